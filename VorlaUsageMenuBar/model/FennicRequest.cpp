// SPDX-License-Identifier: MIT
#include "model/FennicRequest.h"

#include "model/Text.h"

namespace vorla {

std::variant<FennicRequest, FennicRefusal>
FennicRequest::prepare(std::string_view text, const FennicQuota& quota) {
    const std::string_view task = text::trimmed(text);
    if (task.empty()) {
        return FennicRefusal{fennicTaskIsMissing};
    }
    if (text::firstCharacters(task, maximumFennicTaskCharacters).size() < task.size()) {
        return FennicRefusal{fennicTaskIsTooLong};
    }
    return FennicRequest{.task = std::string(task), .quota = quota};
}

std::optional<std::string> FennicRequest::encode() const {
    JsonObjectWriter object;
    object.add("task", task);
    object.add("quota", quota.encode());
    return object.text();
}

} // namespace vorla
