#include "faults/memory_operations.h"
#include "faults/system_calls.h"
#include "faults/torture.h"
#include "support/exceptions.h"
#include "support/memory_child.h"
#include <cerrno>
#include <fstream>
#include <gmock/gmock.h>
#include <set>

namespace {

using namespace pm::test;

struct Number {
    int code;
    std::uint32_t number;
};

// The told table of stream failures.
constexpr Number stream_numbers[] = {
    {ENOENT, 63}, {E2BIG, 71},  {ENOEXEC, 79}, {EBADF, 73},   {ECHILD, 74}, {EAGAIN, 72},
    {ENOMEM, 64}, {EACCES, 61}, {EEXIST, 77},  {EXDEV, 81},   {EINVAL, 78}, {EMFILE, 62},
    {ENOSPC, 65}, {EDOM, 76},   {ERANGE, 80},  {EDEADLK, 75}, {EIO, 82},    {EFBIG, 82},
};
constexpr Number text_numbers[] = {{ENOMEM, 64}, {EACCES, 61}};
constexpr Number section_numbers[] = {{ENOENT, 63}, {EACCES, 61}, {EMFILE, 62}, {ENOMEM, 64}, {ENOSPC, 65}};
constexpr Number identify_numbers[] = {{ENOENT, 63}, {EACCES, 61}, {EMFILE, 62}, {EAGAIN, 72},
                                       {ENOMEM, 64}, {EBADF, 73},  {EINVAL, 78}};

std::uint32_t number_of(std::span<const Number> table, int code, std::uint32_t other) {
    for (const Number& row : table) {
        if (row.code == code) return row.number;
    }
    return other;
}

// The numbers by which an operation may tell of a code.
std::set<std::uint32_t> told_numbers(std::string_view operation, int code) {
    const auto is = [operation](std::string_view part) { return operation.find(part) != operation.npos; };
    const std::uint32_t stream = number_of(stream_numbers, code, 82);
    if (is("Doc")) return {56, 60, 66};
    if (is("Identify")) return {number_of(identify_numbers, code, 82)};
    if (is("Pdt")) return {stream, number_of(section_numbers, code, 56), 56};
    if (is("Pc2") || is("Pcp") || is("Cfg") || is("Plotters"))
        return {stream, number_of(text_numbers, code, 66)};
    return {stream};
}

std::ptrdiff_t open_files() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

class FileFaults : public testing::TestWithParam<MemoryOperation> {
protected:
    FileFaults() {
        Subject subject;
        GetParam().run(subject);
        m_expected = subject.outcome();
    }
    ~FileFaults() override { set_call_folder(nullptr); }

    std::optional<ZT_Exception> run(Subject& subject, const CallFault& fault,
                                    const std::type_info** type = nullptr) {
        set_call_folder("/");
        set_call_fault(fault);
        const auto thrown = thrown_by([&] { GetParam().run(subject); }, type);
        set_call_folder(nullptr);
        return thrown;
    }

    // False when the operation doesn't get as far.
    bool fail(const CallFault& fault) {
        SCOPED_TRACE(testing::Message()
                     << "call " << fault.place << " of kinds " << fault.calls << ", code " << fault.code);
        const std::ptrdiff_t before = open_files();
        Subject subject;
        const std::type_info* type = nullptr;
        const auto thrown = run(subject, fault, &type);
        const bool was_hit = call_fault_hit();
        if (thrown) {
            EXPECT_EQ(class_name(typeid(PM_Severe)), class_name(*type));
            EXPECT_NE(0, fault.code);
            EXPECT_TRUE(told_numbers(GetParam().name, fault.code).contains(thrown->m_number))
                << exception_text(*type, thrown->m_number, thrown->m_place, thrown->m_detail);
        } else {
            EXPECT_EQ(m_expected, subject.outcome()) << "fell short and told nothing";
        }
        subject.forget();
        EXPECT_FALSE(run(subject, {}).has_value());
        EXPECT_EQ(m_expected, subject.outcome()) << "again";
        EXPECT_EQ(before, open_files());
        return was_hit && !HasFailure();
    }

    void fail_each(unsigned calls, int code) {
        CallFault fault{calls, 0, code};
        while (fail(fault)) {
            ++fault.place;
        }
    }

private:
    std::string m_expected;
};

TEST_P(FileFaults, AreToldByTheirNumbers) {
    constexpr int ordinary_codes[] = {EIO, EMFILE};
    for (const unsigned calls : {call_open, call_read, call_write, call_size}) {
        for (const Number& row : stream_numbers) {
            if (torture() || std::ranges::find(ordinary_codes, row.code) != std::end(ordinary_codes)) {
                fail_each(calls, row.code);
            }
        }
    }
}

TEST_P(FileFaults, CallsThatDoHalfAreGoneOnWith) {
    fail_each(call_read, 0);
    fail_each(call_write, 0);
    Subject subject;
    EXPECT_FALSE(run(subject, {call_read | call_write, 0, 0, true}).has_value());
}

std::string name_of(const testing::TestParamInfo<MemoryOperation>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Filers, FileFaults, testing::ValuesIn(filer_operations()), name_of);

// Nothing can be opened in a process without handles; gives the number that this is told by.
std::uint32_t number_without_handles(PM_Object::FileType type, const char* sample) {
    const std::u16string name = FaultFiles::get().wide(sample);
    return static_cast<std::uint32_t>(run_in_child([&] {
                                          PM_Object object;
                                          const rlimit none{0, 0};
                                          setrlimit(RLIMIT_NOFILE, &none);
                                          const auto thrown =
                                              thrown_by([&] { object.load(name.c_str(), type, u"\\"); });
                                          return thrown ? static_cast<int>(thrown->m_number) : 0;
                                      }).status);
}

TEST(NoHandles, AreTold) {
    EXPECT_EQ(62U, number_without_handles(PM_Object::FILE_PIA, "plotter.pia"));
    EXPECT_EQ(62U, number_without_handles(PM_Object::FILE_DPIA, "sections.dpia"));
    EXPECT_EQ(62U, number_without_handles(PM_Object::FILE_PC2, "office.pc2"));
    EXPECT_EQ(62U, number_without_handles(PM_Object::FILE_PCP, "pens.pcp"));
    EXPECT_EQ(62U, number_without_handles(PM_Object::FILE_PDT, "dx4200/strings.pdt"));
    EXPECT_EQ(56U, number_without_handles(PM_Object::FILE_DOC, "sample.doc"));
}

// Changes the file in the middle of its load.
class ChangingHandler : public pm::ReportHandler {
public:
    explicit ChangingHandler(std::function<void()> change) : m_change(std::move(change)) {}
    pm::Answer on_report(int, std::uint32_t, std::u16string_view, std::u16string_view) override {
        m_change();
        return pm::Answer::go_on;
    }

private:
    std::function<void()> m_change;
};

class ChangingFile : public testing::Test {
protected:
    // A bad line in front, then more lines than are read at once.
    ChangingFile() {
        std::string text = "PIAFILEVERSION_2.0\nbad=what\n";
        while (text.size() < 1'000'000) {
            text += "p" + std::to_string(text.size()) + "=1\n";
        }
        folder.write("f.pia", text + "last=1\n");
    }
    void load(std::function<void()> change) {
        ChangingHandler handler(std::move(change));
        PM_Object object(&handler);
        object.load(folder.wide("f.pia").c_str(), PM_Object::FILE_PIA, u"\\");
        has_last = object.pathExists(u"last");
        has_more = object.pathExists(u"more");
    }

    TempFolder folder;
    bool has_last = false;
    bool has_more = false;
};

TEST_F(ChangingFile, ThatShrinksIsReadAsFarAsItGoes) {
    const std::size_t end_of_a_line = folder.read("f.pia").find('\n', 500'000) + 1;
    load([&] { std::filesystem::resize_file(folder / "f.pia", end_of_a_line); });
    EXPECT_FALSE(has_last);
}

TEST_F(ChangingFile, ThatGrowsIsReadToItsNewEnd) {
    load([this] { std::ofstream(folder / "f.pia", std::ios::app) << "more=1\n"; });
    EXPECT_TRUE(has_last);
    EXPECT_TRUE(has_more);
}

} // namespace
