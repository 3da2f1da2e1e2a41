// A session manager with one client, for the test of a log-out.
//
// Prints the address for SESSION_MANAGER. For the line "log out" it has the client save itself, prints the
// words with which the client wants to be started again, tells it to end, and ends when it has.

#include <X11/SM/SMlib.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <poll.h>
#include <unistd.h>

namespace {

SmsConn client = nullptr;
bool loggingOut = false;
bool gone = false;

void say(const char* word, const char* value) {
    std::printf("%s %s\n", word, value);
    std::fflush(stdout);
}

int registered(SmsConn connection, SmPointer, char* previousId) {
    if (previousId) return False;
    SmsRegisterClientReply(connection, SmsGenerateClientID(connection));
    // The protocol wants a newcomer to save once.
    SmsSaveYourself(connection, SmSaveLocal, False, SmInteractStyleNone, False);
    client = connection;
    return True;
}

void saved(SmsConn connection, SmPointer, int success) {
    if (!loggingOut) return say("client", "registered");
    say("saved", success ? "yes" : "no");
    SmsDie(connection);
}

void takeProperties(SmsConn, SmPointer, int count, SmProp** properties) {
    for (int index = 0; index < count; ++index) {
        SmProp& property = *properties[index];
        if (loggingOut && std::strcmp(property.name, SmRestartCommand) == 0) {
            for (int word = 0; word < property.num_vals; ++word)
                say("restart", static_cast<const char*>(property.vals[word].value));
        }
        SmFreeProperty(&property);
    }
    std::free(static_cast<void*>(properties));
}

void closed(SmsConn connection, SmPointer, int, char**) {
    IceConn ice = SmsGetIceConnection(connection);
    SmsCleanUp(connection);
    IceSetShutdownNegotiation(ice, False);
    IceCloseConnection(ice);
    gone = true;
}

int newClient(SmsConn, SmPointer, unsigned long* mask, SmsCallbacks* callbacks, char**) {
    *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask |
            SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask | SmsSaveYourselfDoneProcMask |
            SmsCloseConnectionProcMask | SmsSetPropertiesProcMask | SmsDeletePropertiesProcMask |
            SmsGetPropertiesProcMask;
    callbacks->register_client.callback = registered;
    callbacks->interact_request.callback = [](SmsConn connection, SmPointer, int) {
        SmsInteract(connection);
    };
    callbacks->interact_done.callback = [](SmsConn, SmPointer, int) {
    };
    callbacks->save_yourself_request.callback = [](SmsConn, SmPointer, int, int, int, int, int) {
    };
    callbacks->save_yourself_phase2_request.callback = [](SmsConn connection, SmPointer) {
        SmsSaveYourselfPhase2(connection);
    };
    callbacks->save_yourself_done.callback = saved;
    callbacks->close_connection.callback = closed;
    callbacks->set_properties.callback = takeProperties;
    callbacks->delete_properties.callback = [](SmsConn, SmPointer, int, char**) {
    };
    callbacks->get_properties.callback = [](SmsConn, SmPointer) {
    };
    return 1;
}

int anybody(char*) {
    return True;
}

}  // namespace

int main() {
    char error[256] = {};
    int count = 0;
    IceListenObj* listeners = nullptr;
    if (!SmsInitialize("test", "1", newClient, nullptr, anybody, sizeof error, error) ||
        !IceListenForConnections(&count, &listeners, sizeof error, error)) {
        std::fprintf(stderr, "sessionManager: %s\n", error);
        return 1;
    }
    for (int index = 0; index < count; ++index)
        IceSetHostBasedAuthProc(listeners[index], anybody);
    say("address", IceComposeNetworkIdList(count, listeners));

    IceConn connection = nullptr;
    while (!gone) {
        pollfd watched[8] = {{STDIN_FILENO, POLLIN, 0}};
        nfds_t size = 1;
        if (connection) {
            watched[size++] = {IceConnectionNumber(connection), POLLIN, 0};
        } else {
            for (int index = 0; index < count && size < 8; ++index)
                watched[size++] = {IceGetListenConnectionNumber(listeners[index]), POLLIN, 0};
        }
        // Everything here is over within two minutes.
        if (poll(watched, size, 120'000) <= 0) return 1;
        for (nfds_t index = 1; index < size; ++index) {
            if (watched[index].revents == 0) continue;
            if (connection) {
                int ready = 0;
                if (IceProcessMessages(connection, nullptr, &ready) != IceProcessMessagesSuccess) gone = true;
            } else {
                IceAcceptStatus status = IceAcceptFailure;
                connection = IceAcceptConnection(listeners[index - 1], &status);
                while (connection && IceConnectionStatus(connection) == IceConnectPending)
                    IceProcessMessages(connection, nullptr, nullptr);
            }
        }
        if (watched[0].revents != 0) {
            char line[64];
            if (!std::fgets(line, sizeof line, stdin)) return 1;
            if (!client) return 1;
            loggingOut = true;
            SmsSaveYourself(client, SmSaveBoth, True, SmInteractStyleNone, False);
        }
    }
    say("client", "gone");
    return 0;
}
