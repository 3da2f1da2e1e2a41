#pragma once

#include <QString>

#include <tl/expected.hpp>

namespace orvo {

/// A failure as a value. `message` is the sentence shown to the person; `domain` and `code` name its family.
struct Error {
    QString domain;
    int code = 1;
    QString message;

    bool operator==(const Error&) const = default;
};

/// What an operation that can fail returns; callers must look at it.
template <class T>
using Result = tl::expected<T, Error>;

inline tl::unexpected<Error> failure(QString domain, QString message, int code = 1) {
    return tl::unexpected<Error>(Error{std::move(domain), code, std::move(message)});
}

}  // namespace orvo
