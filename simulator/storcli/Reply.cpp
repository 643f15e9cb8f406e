#include "storcli/Reply.h"

#include "storcli/Words.h"

namespace zolex_sim::storcli {
namespace {

Value commandStatus(const Reply& reply, Version version) {
    Value status = Value::object();
    if (const std::string cli = versionText(version); !cli.empty()) {
        status.add("CLI Version", cli).add("Operating system", "Linux 6.1.0-18-amd64");
    }
    if (reply.controller) {
        status.add("Controller", *reply.controller);
    } else {
        status.add("Status Code", reply.errorCode);
    }
    status.add("Status", reply.errorCode == 0 ? "Success" : "Failure");
    status.add("Description", reply.description);
    if (!reply.details.isEmpty()) {
        status.add("Detailed Status", reply.details);
    }
    return status;
}

} // namespace

void Reply::tell(Version version, const std::string& key, const Value& thing,
                 const std::optional<Refusal>& refusal) {
    const int code = refusal ? refusal->code : 0;
    const bool silent = code != ownRefusal && version <= Version::v1017;
    Value row = Value::object();
    row.add(key, thing).add("Status", refusal ? "Failure" : "Success").add("ErrCd", code);
    row.add("ErrMsg", !refusal || silent ? "-" : refusal->message);
    details.add(row);
    errorCode = errorCode != 0 ? errorCode : code;
}

std::string jsonText(const std::vector<Reply>& replies, Version version) {
    std::string text = "{\n\"Controllers\":[\n";
    for (const Reply& reply : replies) {
        Value controller = Value::object();
        controller.add("Command Status", commandStatus(reply, version));
        if (!reply.data.isEmpty()) {
            controller.add("Response Data", reply.data);
        }
        text += controller.json(0) + (&reply == &replies.back() ? "\n" : ",\n");
    }
    return text + "]\n}\n";
}

std::string plainText(const std::vector<Reply>& replies, Version version) {
    std::string text;
    for (const Reply& reply : replies) {
        text += commandStatus(reply, version).text() + "\n" + reply.data.text();
        text += &reply == &replies.back() ? "" : "\n";
    }
    return text;
}

} // namespace zolex_sim::storcli
