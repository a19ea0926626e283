#include "base/deliver.h"

#include <array>
#include <gtest/gtest.h>
#include <memory>
#include <pm/error_number.h>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr const char16_t* place = u"PM_PIAFile::load()";
constexpr const char16_t* source = u"$Workfile: pmpia $ $Revision: #1 $";

// Of any kind, with two arguments.
class AnyKind : public ZT_Exception {
public:
    explicit AnyKind(int given_kind)
        : ZT_Exception(PM_ERR_BAD_LINE, place, u"line 3", source), m_kind(given_kind) {
        m_res_handle = 0x1234567890;
        m_arg_count = 2;
        m_args[0] = 11;
        m_args[1] = 22;
    }
    int kind() const noexcept override { return m_kind; }

private:
    int m_kind;
};

// Keeps the names of the calls in their order, and checks what each is given.
class OrderHandler : public ZT_Error_Handler {
public:
    explicit OrderHandler(int given_answer) : answer(given_answer) {}

    void reserved_2() override { calls.emplace_back("reserved_2"); }
    void reserved_3() override { calls.emplace_back("reserved_3"); }
    void on_kind_0(std::uint64_t handle, std::uint32_t number, const char16_t* at, const char16_t* detail,
                   const char16_t* marker) override {
        take("on_kind_0", handle, number, at, detail, marker);
    }
    int on_warning(std::uint64_t handle, std::uint32_t number, const char16_t* at, const char16_t* detail,
                   const char16_t* marker) override {
        return take("on_warning", handle, number, at, detail, marker);
    }
    void on_severe(std::uint64_t handle, std::uint32_t number, const char16_t* at, const char16_t* detail,
                   const char16_t* marker) override {
        take("on_severe", handle, number, at, detail, marker);
    }
    int on_error(std::uint64_t handle, std::uint32_t number, const char16_t* at, const char16_t* detail,
                 const char16_t* marker) override {
        return take("on_error", handle, number, at, detail, marker);
    }
    int on_kind_3(std::uint64_t handle, std::uint32_t number, const char16_t* at, const char16_t* detail,
                  const char16_t* marker) override {
        return take("on_kind_3", handle, number, at, detail, marker);
    }
    void on_kind_5(std::uint64_t handle, std::uint32_t number, const char16_t* at, const char16_t* detail,
                   const char16_t* marker) override {
        take("on_kind_5", handle, number, at, detail, marker);
    }
    void reserved_10() override { calls.emplace_back("reserved_10"); }
    void reserved_11() override { calls.emplace_back("reserved_11"); }
    void reserved_12() override { calls.emplace_back("reserved_12"); }
    void reserved_13() override { calls.emplace_back("reserved_13"); }
    void reserved_14() override { calls.emplace_back("reserved_14"); }
    void reserved_15() override { calls.emplace_back("reserved_15"); }
    void set_arguments(const std::uint64_t* args, std::int32_t count) override {
        calls.emplace_back("set_arguments");
        arguments.assign(args, args + count);
    }

    int answer;
    std::vector<std::string> calls;
    std::vector<std::uint64_t> arguments;

private:
    int take(const char* call, std::uint64_t handle, std::uint32_t number, const char16_t* at,
             const char16_t* detail, const char16_t* marker) {
        calls.emplace_back(call);
        EXPECT_EQ(0x1234567890U, handle);
        EXPECT_EQ(PM_ERR_BAD_LINE, number);
        EXPECT_EQ(place, at);
        EXPECT_EQ(std::u16string(u"line 3"), detail);
        EXPECT_EQ(source, marker);
        return answer;
    }
};

void expect_delivered(int kind, const std::string& call, int answer, int result) {
    OrderHandler handler(answer);
    EXPECT_EQ(result, pm::deliver(handler, AnyKind(kind))) << kind;
    EXPECT_EQ((std::vector<std::string>{"set_arguments", call}), handler.calls) << kind;
    EXPECT_EQ((std::vector<std::uint64_t>{11, 22}), handler.arguments) << kind;
}

// A handler as a caller makes it who has no C++ class for it: a pointer to a table of functions. The
// destructor has the first two slots.
class TableOfFunctions {
public:
    static constexpr std::size_t slot_count = 17;
    struct Call {
        std::size_t slot;
        std::uint32_t number;
        std::u16string detail;
        bool operator==(const Call&) const = default;
    };

    ZT_Error_Handler& handler() { return *reinterpret_cast<ZT_Error_Handler*>(this); }
    static std::vector<Call> calls;

private:
    using Function = void (*)();

    template<std::size_t slot>
    static int report(void*, std::uint64_t, std::uint32_t number, const char16_t*, const char16_t* detail,
                      const char16_t*) {
        calls.push_back({slot, number, detail});
        return 40 + static_cast<int>(slot);
    }
    template<std::size_t slot>
    static void take_arguments(void*, const std::uint64_t* args, std::int32_t count) {
        calls.push_back({slot, static_cast<std::uint32_t>(args[0]),
                         std::u16string(static_cast<std::size_t>(count), u'#')});
    }

    template<std::size_t... slots>
    static std::array<Function, slot_count> make_table(std::index_sequence<slots...>) {
        return {slots == slot_count - 1 ? reinterpret_cast<Function>(&take_arguments<slots>)
                                        : reinterpret_cast<Function>(&report<slots>)...};
    }

    static const std::array<Function, slot_count> table;
    const Function* m_table = table.data();
};

std::vector<TableOfFunctions::Call> TableOfFunctions::calls;
const std::array<TableOfFunctions::Function, TableOfFunctions::slot_count> TableOfFunctions::table =
    make_table(std::make_index_sequence<slot_count>());

// What is called for the kind stands in this slot, and set_arguments() in the last.
void expect_slot(int kind, std::size_t slot) {
    TableOfFunctions functions;
    TableOfFunctions::calls.clear();
    const bool counts = kind != 0 && kind != 4 && kind != 5;
    EXPECT_EQ(counts ? 40 + static_cast<int>(slot) : 2, pm::deliver(functions.handler(), AnyKind(kind)))
        << kind;
    EXPECT_EQ((std::vector<TableOfFunctions::Call>{{16, 11, u"##"}, {slot, PM_ERR_BAD_LINE, u"line 3"}}),
              TableOfFunctions::calls)
        << kind;
}

} // namespace

TEST(Deliver, CallsTheOperationOfTheKindAfterSetArguments) {
    expect_delivered(0, "on_kind_0", 0, 2);
    expect_delivered(1, "on_warning", 0, 0);
    expect_delivered(2, "on_error", 0, 0);
    expect_delivered(3, "on_kind_3", 0, 0);
    expect_delivered(4, "on_severe", 0, 2);
    expect_delivered(5, "on_kind_5", 0, 2);
}

TEST(Deliver, GivesTheHandlersAnswerWhereItCounts) {
    for (const int answer : {1, 2, 7, -1}) {
        expect_delivered(0, "on_kind_0", answer, 2);
        expect_delivered(1, "on_warning", answer, answer);
        expect_delivered(2, "on_error", answer, answer);
        expect_delivered(3, "on_kind_3", answer, answer);
        expect_delivered(4, "on_severe", answer, 2);
        expect_delivered(5, "on_kind_5", answer, 2);
    }
}

TEST(Deliver, UnknownKindsAreErrors) {
    for (const int kind : {-1, 7, 8, 100}) {
        expect_delivered(kind, "on_error", 0, 0);
        expect_delivered(kind, "on_error", 5, 5);
    }
}

TEST(Deliver, CancellationNeverReachesTheHandler) {
    OrderHandler handler(1);
    EXPECT_EQ(0, pm::deliver(handler, AnyKind(6)));
    EXPECT_EQ(0, pm::deliver(handler, ZT_Canceled_Error(PM_ERR_BAD_LINE, place, u"", source)));
    EXPECT_TRUE(handler.calls.empty());
}

TEST(Deliver, CallsTheOperationsByTheirSlots) {
    expect_slot(0, 4);
    expect_slot(1, 5);
    expect_slot(4, 6);
    expect_slot(2, 7);
    expect_slot(100, 7);
    expect_slot(3, 8);
    expect_slot(5, 9);
}

TEST(Deliver, HandlerIsDeletedThroughItsBase) {
    class Noting : public OrderHandler {
    public:
        explicit Noting(bool& gone) : OrderHandler(0), m_gone(gone) {}
        ~Noting() override { m_gone = true; }
        Noting(const Noting&) = delete;
        Noting& operator=(const Noting&) = delete;

    private:
        bool& m_gone;
    };
    bool gone = false;
    std::unique_ptr<ZT_Error_Handler>(std::make_unique<Noting>(gone)).reset();
    EXPECT_TRUE(gone);
}
