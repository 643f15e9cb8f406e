#include "companion/cli/Pieces.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace zolex::companion {

namespace {

/// Takes one piece after another until there is none left.
class Workers {
  public:
    explicit Workers(const PiecesOfWork& pieces) : pieces_(pieces), faults_(pieces.count) {}

    void run() {
        const std::size_t jobs =
            std::min(pieces_.count, static_cast<std::size_t>(std::max(pieces_.jobs, 1)));
        std::vector<std::jthread> threads;
        try {
            while (threads.size() + 1 < jobs) {
                threads.emplace_back([this] { work(); });
            }
        } catch (const std::system_error&) {
            // The system has no more threads: those that there are do all of it.
        }
        work();
        threads.clear();
        const auto fault = std::find_if(faults_.begin(), faults_.end(),
                                        [](const std::exception_ptr& each) { return !!each; });
        if (fault != faults_.end()) {
            std::rethrow_exception(*fault);
        }
    }

  private:
    void work() {
        for (std::size_t i = next_++; i < pieces_.count; i = next_++) {
            try {
                pieces_.work(i);
            } catch (...) {
                faults_[i] = std::current_exception();
            }
            if (pieces_.progress) {
                const std::lock_guard lock(mutex_);
                pieces_.progress(++done_);
            }
        }
    }

    const PiecesOfWork& pieces_;
    std::vector<std::exception_ptr> faults_; ///< one for each piece
    std::atomic<std::size_t> next_{0};
    std::mutex mutex_; ///< of what is told
    std::size_t done_ = 0;
};

} // namespace

void doPieces(const PiecesOfWork& pieces) {
    Workers(pieces).run();
}

} // namespace zolex::companion
