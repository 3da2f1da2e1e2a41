#pragma once

#include "platform/FilePath.h"
#include "platform/Result.h"

namespace orvo {

/// The folders that belong to the application. A value, so that tests can point at folders of their own.
/// Nothing is created until somebody writes; see `createPrivateFolder`.
struct AppFolders {
    /// Preferences: "orvo-ai" in the person's configuration folder.
    FilePath configuration;
    /// Everything else that is kept: "Orvo AI" in the person's data folder.
    FilePath data;

    /// By the XDG base directory rules: a variable that is empty or relative counts as unset.
    static AppFolders fromProcess();

    /// The data folder of one feature, such as "Runs".
    FilePath applicationData(const QByteArray& name) const { return data.child(name); }
};

/// Creates `folder` and what is missing above it, each part readable by its owner only (0700).
/// A folder that exists is left as it is.
Result<void> createPrivateFolder(const FilePath& folder);

}  // namespace orvo
