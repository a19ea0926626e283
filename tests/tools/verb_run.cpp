#include "tools/verb_run.h"

#include "program.h"
#include <cstdio>
#include <stdexcept>
#include <sys/mman.h>
#include <unistd.h>

namespace pm::test {

namespace {

int memory_file() {
    const int file = memfd_create("output", MFD_CLOEXEC);
    if (file < 0) throw std::runtime_error("no memory for output");
    return file;
}

// All that was written to the file, which is empty then.
std::string taken(int file) {
    std::string text(static_cast<std::size_t>(lseek(file, 0, SEEK_END)), '\0');
    if (pread(file, text.data(), text.size(), 0) != static_cast<ssize_t>(text.size()) ||
        ftruncate(file, 0) != 0 || lseek(file, 0, SEEK_SET) != 0) {
        throw std::runtime_error("output can't be read");
    }
    return text;
}

} // namespace

OutputTaker::OutputTaker()
    : m_out(memory_file()), m_err(memory_file()), m_out_before(dup(STDOUT_FILENO)),
      m_err_before(dup(STDERR_FILENO)) {
    std::fflush(nullptr);
    dup2(m_out, STDOUT_FILENO);
    dup2(m_err, STDERR_FILENO);
}

OutputTaker::~OutputTaker() {
    std::fflush(nullptr);
    dup2(m_out_before, STDOUT_FILENO);
    dup2(m_err_before, STDERR_FILENO);
    for (const int file : {m_out, m_err, m_out_before, m_err_before}) {
        close(file);
    }
}

VerbRun OutputTaker::run(std::vector<std::string> words) const {
    words.insert(words.begin(), "pmtool");
    VerbRun run;
    run.status = pmtool::run_program(words);
    std::fflush(nullptr);
    run.out = taken(m_out);
    run.err = taken(m_err);
    return run;
}

} // namespace pm::test
