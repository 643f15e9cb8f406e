#pragma once

namespace zolex {

/// Work that is due even when the error reporter ends the process: that unwinds nothing, so the
/// objects which live then are told. The list of them is the one state that the program keeps
/// outside its objects, since whoever runs out of memory knows none of these.
class EndingTask {
  public:
    EndingTask(const EndingTask&) = delete;
    EndingTask& operator=(const EndingTask&) = delete;
    virtual ~EndingTask();

    /// Runs the task of every object that lives, the youngest first, each once.
    static void runAll() noexcept;

  protected:
    EndingTask() noexcept;

  private:
    /// The process is about to end. Memory may be short.
    virtual void processEnds() noexcept = 0;
    static EndingTask*& youngest() noexcept;

    EndingTask* older_;
};

} // namespace zolex
