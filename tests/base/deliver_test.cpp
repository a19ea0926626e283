#include "base/deliver.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr const char16_t* place = u"PM_PIAFile::load()";
constexpr const char16_t* source = u"$Workfile: pmpia $ $Revision: #1 $";

// Of any kind, with two arguments.
class AnyKind : public ZT_Exception {
public:
    explicit AnyKind(int given_kind) : ZT_Exception(57, place, u"line 3", source), m_kind(given_kind) {
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
        EXPECT_EQ(57U, number);
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
    EXPECT_EQ(0, pm::deliver(handler, ZT_Canceled_Error(57, place, u"", source)));
    EXPECT_TRUE(handler.calls.empty());
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
