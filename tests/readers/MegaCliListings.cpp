#include "readers/MegaCliListings.h"

namespace zolex::test {

std::vector<std::string> splitLines(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t newline = text.find('\n', at);
        const std::size_t end = newline == std::string::npos ? text.size() : newline + 1;
        lines.push_back(text.substr(at, end - at));
        at = end;
    }
    return lines;
}

std::string joinLines(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line;
    }
    return text;
}

std::string withCrLf(const std::string& text) {
    std::string result;
    for (const char c : text) {
        result += c == '\n' ? "\r\n" : std::string(1, c);
    }
    return result;
}

std::size_t countOf(const std::string& text, const std::string& part) {
    std::size_t n = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++n;
    }
    return n;
}

std::string PdText::text() const {
    return "Enclosure Device ID: " + enclosure + "\nSlot Number: " + std::to_string(slot) +
           "\nEnclosure position: 1\nDevice Id: 8\nPD Type: SAS\nRaw Size: 1.819 TB\n"
           "Non Coerced Size: 1MB\nCoerced Size: " +
           size + "\nSector Size:  512\nFirmware state: " + state + "\nInquiry Data: " + inquiry +
           "   \nForeign State: None \nMedia Type: Hard Disk Device\n\n";
}

std::string VdText::text(int number) const {
    std::string text = "Virtual Disk: " + std::to_string(number) +
                       " (Target Id: " + std::to_string(number) + ")\nName:\nRAID Level: " + level +
                       "\nSize:" + size + "\nState: " + state + "\nStripe Size: " + stripe +
                       "\nNumber Of Drives:2\nSpan Depth:1\nDefault Cache Policy: WriteThrough\n"
                       "Current Cache Policy: " +
                       cache + "\nNumber of Spans: " + std::to_string(spans.size()) + "\n";
    for (std::size_t s = 0; s < spans.size(); ++s) {
        text += "Span: " + std::to_string(s) +
                " - Number of PDs: " + std::to_string(spans[s].size()) + "\n";
        for (std::size_t i = 0; i < spans[s].size(); ++i) {
            text += "PD: " + std::to_string(i) + " Information\n" + spans[s][i].text();
        }
    }
    return text;
}

std::string configurationListing(const std::vector<VdText>& disks) {
    std::string text =
        "\nAdapter #0\n\nNumber of Virtual Disks: " + std::to_string(disks.size()) + "\n";
    for (std::size_t i = 0; i < disks.size(); ++i) {
        text += disks[i].text(static_cast<int>(i));
    }
    return text + "\nExit Code: 0x00\n";
}

std::string driveListing(const std::vector<PdText>& drives) {
    std::string text = "\nAdapter #0\n\n";
    for (const PdText& drive : drives) {
        text += drive.text();
    }
    return text + "\nExit Code: 0x00\n";
}

std::string describeLayout(const RAIDController& controller) {
    const RAIDConfiguration* configuration = controller.captured();
    if (configuration == nullptr) {
        return "none";
    }
    std::string text;
    char letter = 'A';
    for (const RaidArray& array : configuration->arrays()) {
        text += std::string(1, letter++) + "=";
        for (const DrivePosition& drive : array.drives()) {
            text += std::to_string(drive.channel) + ":" + std::to_string(drive.id) + ",";
        }
        text.back() = ' ';
    }
    int number = 0;
    for (const LogicalDrive& drive : configuration->logicalDrives()) {
        text += std::to_string(++number) + "=" +
                std::string(1, static_cast<char>('A' + drive.arrayIndex)) + "/" +
                std::to_string(drive.sizeMb) + "/" + std::to_string(drive.raidLevel) + "/" +
                std::to_string(drive.writeCache) + "/" + drive.state.c_str() + "/" +
                drive.derivedState.c_str() + " ";
    }
    for (const Hotspare& hotspare : configuration->hotspares()) {
        text += "hs=" + std::to_string(hotspare.enclosure.value_or(-1)) + ":" +
                std::to_string(hotspare.id) + ":" + std::to_string(hotspare.diskNumber) + " ";
    }
    return text + "stripe=" + std::to_string(configuration->stripeSize) +
           " ra=" + std::to_string(configuration->readAhead);
}

std::vector<std::string> describeDrives(const RAIDController& controller) {
    std::vector<std::string> drives;
    controller.forEachDrive([&](std::int32_t channel, std::int32_t id) {
        const RaidDisk& record = controller.driveRecord(channel, id);
        EXPECT_EQ(record.channelNumber, controller.targetId(channel, id));
        EXPECT_EQ(record.id, id);
        EXPECT_EQ(record.diskNumber, -1);
        EXPECT_EQ(record.sizeMb, controller.size(channel, id));
        drives.push_back(std::to_string(channel) + ":" + std::to_string(id) + " " +
                         std::to_string(controller.size(channel, id)) + " t" +
                         std::to_string(controller.targetId(channel, id)) + " " +
                         record.state.c_str() + " " + record.derivedState.c_str() + " " +
                         record.serialNumber.c_str() +
                         (controller.isUsed(channel, id) ? " used" : ""));
    });
    return drives;
}

MEGAReaderFixture::MEGAReaderFixture() {
    application.printer().setVerbosity(level::progress);
}

void MEGAReaderFixture::read(const std::string& configuration, const std::string& drives,
                             const std::string& adapter) {
    controller = std::make_unique<RAIDController>();
    controller->setType(controller_type::megaRaid);
    controller->setSubtype(subtype);
    std::vector<std::string> listings = {drives, adapter};
    if (detail.layout) {
        listings.insert(listings.begin(), configuration);
    }
    MEGAReader reader(detail, application.report());
    EXPECT_TRUE(reader.readConfiguration(*controller, listings));
}

} // namespace zolex::test
