#include "companion/commands/RecordingOutput.h"

#include "companion/machine/Capture.h"
#include "companion/text/OutputFile.h"

#include <memory>
#include <utility>

namespace zolex::companion {

namespace {

using output_file::Standing;

/// A name beside `name` that nothing has: what an interrupted run left there stays.
std::string partialName(const std::string& name) {
    const std::string first = name + ".partial";
    std::string free = first;
    for (int i = 2; output_file::standing(free) != Standing::nothing; ++i) {
        free = first + "-" + std::to_string(i);
    }
    return free;
}

class RecordingOutput {
  public:
    RecordingOutput(Context& context, const RecordingTarget& target)
        : context_(context), target_(target), name_(output_file::systemName(target.name)),
          standing_(output_file::standing(name_)) {}

    /// False after a message.
    bool start(const RecordingHeader& header) {
        std::unique_ptr<File> file = open();
        if (file == nullptr) {
            failWith(context_, printable(target_.name) + ": no recording can be made here",
                     "name another file; nothing was asked of the machine");
            return false;
        }
        writer_ = std::make_unique<RecordingWriter>(std::move(file), header);
        return true;
    }

    RecordingWriter& writer() { return *writer_; }

    /// False after a message.
    bool finish() {
        if (!writer_->finish()) {
            failWith(context_,
                     printable(target_.name) + ": the recording could not be written whole",
                     "free some space, or name another file with " + target_.option);
            tellPartial();
            return false;
        }
        if (!partial_.empty() && !output_file::moveOver(partial_, name_)) {
            const std::string error = lastSystemError();
            failWith(context_, printable(target_.name) + ": " + printable(error),
                     "the recording is whole: give it another name");
            tellPartial();
            return false;
        }
        return true;
    }

    void discard() {
        writer_.reset();
        if (!partial_.empty() && !context_.platform.files().remove(partial_)) {
            tellPartial();
        }
    }

    void tellPartial() {
        if (!partial_.empty()) {
            context_.platform.console().writeError(
                emphasized("note:", Emphasis::heading, context_.errorStyle) +
                " what was recorded is in " + printable(partial_) + "\n");
        }
    }

  private:
    std::unique_ptr<File> open() {
        FileSystem& files = context_.platform.files();
        if (standing_ == Standing::device) {
            return files.open(name_, "w");
        }
        if (name_.empty() || (standing_ != Standing::nothing && standing_ != Standing::file)) {
            return nullptr;
        }
        partial_ = partialName(name_);
        return files.create(partial_, name_, FileSystem::WhenInterrupted::kept);
    }

    Context& context_;
    const RecordingTarget& target_;
    std::string name_; ///< as the system takes it
    Standing standing_;
    std::string partial_; ///< empty: the target itself is written
    std::unique_ptr<RecordingWriter> writer_;
};

} // namespace

std::optional<std::size_t> makeRecording(Context& context, const RecordingTarget& target,
                                         const RecordingHeader& header,
                                         const std::function<void(RecordingWriter&)>& fill) {
    RecordingOutput output(context, target);
    if (!output.start(header)) {
        return std::nullopt;
    }
    try {
        fill(output.writer());
    } catch (const NoSuchController&) {
        output.discard();
        throw;
    } catch (...) {
        output.tellPartial();
        throw;
    }
    return output.finish() ? std::optional(output.writer().bytes()) : std::nullopt;
}

} // namespace zolex::companion
