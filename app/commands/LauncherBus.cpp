// SPDX-License-Identifier: MIT
#include "app/commands/LauncherBus.h"

#include <dbus/dbus.h>
#include <sys/stat.h>

#include <cstdlib>
#include <memory>

namespace {

// As long as the program's own client waits for the instance, which answers moves once the window
// manager has confirmed them.
constexpr int kReplyTimeoutMs = 60000;

struct ConnectionClose {
    void operator()(DBusConnection* connection) const {
        dbus_connection_close(connection);
        dbus_connection_unref(connection);
    }
};
struct MessageUnref {
    void operator()(DBusMessage* message) const { dbus_message_unref(message); }
};
using Connection = std::unique_ptr<DBusConnection, ConnectionClose>;
using Message = std::unique_ptr<DBusMessage, MessageUnref>;

// An error of libdbus, freed when it goes.
struct Error {
    DBusError error;
    Error() { dbus_error_init(&error); }
    ~Error() { dbus_error_free(&error); }
    Error(const Error&) = delete;
    Error& operator=(const Error&) = delete;
};

// A string as a JSON value, escaped as Qt's JSON writer escapes it (the bytes are valid UTF-8: the bus
// checks every string it carries).
std::string jsonString(std::string_view text) {
    static constexpr char kHex[] = "0123456789abcdef";
    std::string quoted = "\"";
    for (const char byte : text) {
        const auto code = static_cast<unsigned char>(byte);
        switch (byte) {
            case '"':
                quoted += "\\\"";
                break;
            case '\\':
                quoted += "\\\\";
                break;
            case '\b':
                quoted += "\\b";
                break;
            case '\f':
                quoted += "\\f";
                break;
            case '\n':
                quoted += "\\n";
                break;
            case '\r':
                quoted += "\\r";
                break;
            case '\t':
                quoted += "\\t";
                break;
            default:
                if (code < 0x20) {
                    quoted += "\\u00";
                    quoted += kHex[code >> 4];
                    quoted += kHex[code & 0xf];
                } else {
                    quoted += byte;
                }
        }
    }
    return quoted + '"';
}

// An object of the members, given in the order of their names, laid out as the program's indented JSON.
std::string jsonObject(const std::vector<std::pair<std::string_view, std::string>>& members) {
    std::string text = "{\n";
    for (size_t i = 0; i < members.size(); ++i) {
        text += "    " + jsonString(members[i].first) + ": " + members[i].second;
        text += i + 1 < members.size() ? ",\n" : "\n";
    }
    return text + "}\n";
}

// What the command prints for an answer: its status line, or with --json the answer as an object.
LauncherBus::Answer printed(const LauncherCall& call, CommandCatalog::Outcome outcome, std::string_view status,
                            std::string_view error, int moved, int attempted) {
    LauncherBus::Answer answer;
    answer.exitStatus = CommandCatalog::exitStatus(outcome);
    std::string& shown = answer.exitStatus == 0 ? answer.standardOutput : answer.standardError;
    if (call.json) {
        if (!error.empty()) {
            shown = jsonObject({{"error", jsonString(error)}, {"status", jsonString(status)}});
        } else if (call.command->moves()) {
            shown = jsonObject({{"attempted", std::to_string(attempted)},
                                {"moved", std::to_string(moved)},
                                {"status", jsonString(status)}});
        } else {
            shown = jsonObject({{"status", jsonString(status)}});
        }
    } else if (!error.empty()) {
        answer.standardError = "lattica: " + std::string(status) + '\n';
    } else if (!status.empty()) {
        shown = std::string(status) + '\n';
    }
    return answer;
}

LauncherBus::Answer moves(const LauncherCall& call, DBusMessage* reply) {
    dbus_int32_t moved = 0;
    dbus_int32_t attempted = 0;
    const char* status = nullptr;
    Error error;
    LauncherBus::Answer answer;
    if (!dbus_message_get_args(reply, &error.error, DBUS_TYPE_INT32, &moved, DBUS_TYPE_INT32, &attempted,
                               DBUS_TYPE_STRING, &status, DBUS_TYPE_INVALID)) {
        answer.standardError = "lattica: the running Lattica gave an answer of the wrong type.\n";
        answer.exitStatus = 1;
        return answer;
    }
    return printed(call, CommandCatalog::outcomeOfMoves(moved, attempted), status, {}, moved, attempted);
}

}  // namespace

std::optional<std::string> LauncherBus::sessionBusAddress() {
    const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    if (address != nullptr && address[0] != '\0') {
        return std::string(address);
    }
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime == nullptr || runtime[0] == '\0') {
        return std::nullopt;
    }
    const std::string socket = std::string(runtime) + "/bus";
    struct stat status {};
    if (::stat(socket.c_str(), &status) != 0 || !S_ISSOCK(status.st_mode)) {
        return std::nullopt;
    }
    char* escaped = dbus_address_escape_value(socket.c_str());
    if (escaped == nullptr) {
        return std::nullopt;
    }
    std::string result = std::string("unix:path=") + escaped;
    dbus_free(escaped);
    return result;
}

std::optional<LauncherBus::Answer> LauncherBus::call(const std::string& address, const LauncherCall& call) {
    Error error;
    Connection connection(dbus_connection_open_private(address.c_str(), &error.error));
    if (!connection) {
        return std::nullopt;
    }
    dbus_connection_set_exit_on_disconnect(connection.get(), FALSE);
    if (!dbus_bus_register(connection.get(), &error.error)) {
        return std::nullopt;
    }
    const std::string method(call.command->method);
    const std::string service(CommandCatalog::kServiceName);
    const std::string path(CommandCatalog::kObjectPath);
    const std::string interface(CommandCatalog::kInterfaceName);
    Message message(dbus_message_new_method_call(service.c_str(), path.c_str(), interface.c_str(), method.c_str()));
    if (!message) {
        return std::nullopt;
    }
    // Nothing may start an instance for the call: with none running, the program does the work.
    dbus_message_set_auto_start(message.get(), FALSE);
    DBusMessageIter arguments;
    dbus_message_iter_init_append(message.get(), &arguments);
    for (const std::string& argument : call.arguments) {
        const char* value = argument.c_str();
        if (!dbus_validate_utf8(value, nullptr) ||
            !dbus_message_iter_append_basic(&arguments, DBUS_TYPE_STRING, &value)) {
            return std::nullopt;
        }
    }
    Message reply(
        dbus_connection_send_with_reply_and_block(connection.get(), message.get(), kReplyTimeoutMs, &error.error));
    if (!reply) {
        const std::string_view name = error.error.name == nullptr ? std::string_view() : error.error.name;
        if (!name.starts_with(CommandCatalog::kErrorPrefix)) {
            // No instance owns the name (ServiceUnknown), or it went away or does not answer.
            return std::nullopt;
        }
        return printed(call, CommandCatalog::outcomeOfError(name),
                       error.error.message == nullptr ? "" : error.error.message, name, 0, 0);
    }
    if (call.command->reply == CommandCatalog::Reply::Moves) {
        return moves(call, reply.get());
    }
    return printed(call, CommandCatalog::Outcome::Done, {}, {}, 0, 0);
}
