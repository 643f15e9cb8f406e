#include "foundation/EndingTask.h"

namespace zolex {

EndingTask*& EndingTask::youngest() noexcept {
    static EndingTask* task = nullptr;
    return task;
}

EndingTask::EndingTask() noexcept : older_(youngest()) {
    youngest() = this;
}

EndingTask::~EndingTask() {
    for (EndingTask** task = &youngest(); *task != nullptr; task = &(*task)->older_) {
        if (*task == this) {
            *task = older_;
            return;
        }
    }
}

void EndingTask::runAll() noexcept {
    while (EndingTask* task = youngest()) {
        youngest() = task->older_; // it may itself end the process
        task->processEnds();
    }
}

} // namespace zolex
