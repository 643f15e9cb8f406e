#include "companion/lint/MemberLine.h"

#include "companion/lint/Models.h"
#include "model/RAIDController.h"
#include "readers/ListingCursor.h"

namespace zolex::companion {

namespace {

constexpr std::string_view key = "   Drive(s) (Channel,Device)                :";

std::string memberText(DrivePosition drive) {
    // The utilities count channels from 0.
    return " " + std::to_string(drive.channel - RAIDController::firstChannel) + "," +
           std::to_string(drive.id);
}

} // namespace

std::string memberLine(const std::vector<DrivePosition>& drives) {
    std::string line(key);
    for (const DrivePosition drive : drives) {
        line += memberText(drive);
    }
    line += ' ';
    return line;
}

bool listsMembersInOneLine(std::int32_t controllerType) {
    const std::string utility = utilityOf(controllerType);
    return utility == "ARCCONF" || utility == "HRCONF";
}

std::size_t membersRead(const std::vector<DrivePosition>& drives) {
    std::size_t length = key.size();
    std::size_t count = 0;
    while (count < drives.size()) {
        length += memberText(drives[count]).size();
        if (length > longestListingLine) {
            break;
        }
        ++count;
    }
    return count;
}

} // namespace zolex::companion
