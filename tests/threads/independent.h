#pragma once

#include "support/temp_folder.h"
#include "support/tree_dump.h"
#include <atomic>
#include <exception>
#include <functional>
#include <gtest/gtest.h>
#include <ostream>
#include <pm/pm.h>
#include <string>
#include <thread>
#include <vector>

// Threads that each work with objects of their own need no lock: each gets what it gets alone. Under the
// thread sanitizer such tests also hold that nothing in the library is shared without one.

namespace pm::test {

using Lines = std::vector<std::string>;
using Work = std::function<Lines(int number, const TempFolder& folder)>;

inline constexpr int thread_count = 4;

// What a failing operation tells: class apart, all that the exception says, and the text of its number; "" if
// nothing is thrown.
inline std::string failure(const std::function<void()>& action) {
    try {
        action();
    } catch (const ZT_Exception& e) {
        ZT_String text;
        pm_error_text(e.m_number, text);
        return std::to_string(e.kind()) + ' ' + std::to_string(e.m_number) + ' ' + e.m_place_narrow + ' ' +
               utf8(e.m_detail) + ' ' + utf8(text.text());
    } catch (const std::exception& e) {
        return e.what();
    }
    return "";
}

// A failure in a thread is a result as well, which differs from the right one.
inline Lines result_of(const Work& piece, int number, const TempFolder& folder) {
    Lines lines;
    const std::string told = failure([&] { lines = piece(number, folder); });
    if (!told.empty()) lines.push_back(told);
    return lines;
}

// Runs every piece of work in each of the threads at once, thread by thread beginning with another piece, and
// expects of each what it gives alone afterwards: before, it would make ready what threads may share.
inline void expect_independent(const std::vector<Work>& pieces, int rounds) {
    std::vector<std::vector<Lines>> results(thread_count, std::vector<Lines>(pieces.size()));
    std::atomic<int> missing = thread_count;
    {
        std::vector<std::jthread> threads;
        for (int number = 0; number < thread_count; ++number) {
            threads.emplace_back([&, number] {
                const TempFolder folder;
                // Not by a barrier: under Wine its threads sometimes sleep for ever.
                --missing;
                while (missing != 0) {
                    std::this_thread::yield();
                }
                for (std::size_t at = 0; at < static_cast<std::size_t>(rounds) * pieces.size(); ++at) {
                    const std::size_t piece = (at + static_cast<std::size_t>(number)) % pieces.size();
                    results[static_cast<std::size_t>(number)][piece] =
                        result_of(pieces[piece], number, folder);
                }
            });
        }
    }
    for (int number = 0; number < thread_count; ++number) {
        const TempFolder folder;
        for (std::size_t piece = 0; piece < pieces.size(); ++piece) {
            const Lines alone = result_of(pieces[piece], number, folder);
            EXPECT_FALSE(alone.empty());
            EXPECT_EQ(alone, results[static_cast<std::size_t>(number)][piece])
                << "thread " << number << ", piece " << piece;
        }
    }
}

// A row of a table of work.
struct ThreadWork {
    const char* name;
    Work work;

    friend void PrintTo(const ThreadWork& row, std::ostream* out) { *out << row.name; }
};

} // namespace pm::test
