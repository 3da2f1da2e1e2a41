#pragma once

#include "app/Options.h"
#include "platform/FileDescriptor.h"

#include <QObject>
#include <QSocketNotifier>

#include <chrono>
#include <memory>
#include <variant>

namespace orvo {

/// What a start asks of the instance that is running already.
struct StartRequest {
    std::optional<FilePath> workspace = {};
    Options::Errand errand = Options::Errand::None;
    /// The desktop's permission to come to the front, empty when it gave none.
    QByteArray activationToken = {};

    bool operator==(const StartRequest&) const = default;
};

/// Holds the place of the one instance a user session has, and receives what later starts ask for.
///
/// The place is a lock that the system releases with the process, whatever ended it, so nothing stale can
/// block a start. Main thread only; needs a running event loop to answer.
class SingleInstance : public QObject {
    Q_OBJECT

public:
    ~SingleInstance() override;

    /// How long a later start waits for the running instance, which may itself be starting or ending.
    static constexpr std::chrono::milliseconds defaultPatience = std::chrono::seconds(15);

    /// The running instance has taken the request.
    struct HandedOver {};
    using Claim = std::variant<std::unique_ptr<SingleInstance>, HandedOver>;

    /// Takes the place in `folder`, or hands `request` to who has it. Blocks, for at most `patience`; needs
    /// an application object. The error's message is one sentence for the terminal.
    static Result<Claim> claim(const FilePath& folder, const StartRequest& request,
                               std::chrono::milliseconds patience = defaultPatience);

Q_SIGNALS:
    void requested(const orvo::StartRequest& request);

private:
    class Caller;

    SingleInstance(FileDescriptor lock, const FilePath& socket);
    void receive();

    const FileDescriptor m_lock;
    const FilePath m_path;
    /// Not open when the socket could not be made.
    const FileDescriptor m_socket;
    std::unique_ptr<QSocketNotifier> m_called;
};

}  // namespace orvo
