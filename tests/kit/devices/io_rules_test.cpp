#include "kit/devices/small_device.h"
#include <gtest/gtest.h>

namespace {

using namespace pm::test;

TEST(IoMethod, OfTheDevicePasses) {
    EXPECT_EQ(looked("io-method", {{"\\io\\default_type", 6}}),
              Lines{"passed \\io\\default_type @ \\io\\method\\6"});
}

TEST(IoMethod, ThatTheDeviceHasNotIsFound) {
    EXPECT_EQ(found("io-method", {{"\\io\\default_type", 5}}),
              Lines{"error \\io\\default_type = 5 @ \\io\\method = : The device has no output by 5 "
                    "(Parallel). (4, RS232; 6, "
                    "Network)"});
}

TEST(IoMethod, ToAFileNeedsThatMethod) {
    EXPECT_EQ(looked("io-method", {{"\\io\\plot_to_file", false}}),
              Lines{"passed \\io\\plot_to_file @ \\io\\method"});
    EXPECT_EQ(found("io-method", {{"\\io\\plot_to_file", true}}),
              Lines{"error \\io\\plot_to_file = true @ \\io\\method = : The device has no output to a file. "
                    "(4, RS232; 6, "
                    "Network)"});
}

TEST(IoTimeout, WithinTheLimitsOfTheMethodPasses) {
    EXPECT_EQ(looked("io-timeout", {{"\\io\\output_timeout", 300}, {"\\io\\input_timeout", 5}}),
              (Lines{"passed \\io\\output_timeout @ \\io\\method\\4\\max_output_timeout",
                     "passed \\io\\input_timeout @ \\io\\method\\4\\max_input_timeout"}));
}

TEST(IoTimeout, OutsideTheLimitsIsFound) {
    EXPECT_EQ(
        found("io-timeout", {{"\\io\\output_timeout", 4}, {"\\io\\input_timeout", 300}}),
        (Lines{"error \\io\\output_timeout = 4 @ \\io\\method\\4\\min_output_timeout = 5: The timeout of "
               "output, 4, is below the least, 5, for output by 4 (RS232), the device's default. (5 to 300)",
               "error \\io\\input_timeout = 300 @ \\io\\method\\4\\max_input_timeout = 200: The timeout of "
               "input, 300, is above the most, 200, for output by 4 (RS232), the device's default. (5 to "
               "200)"}));
}

TEST(IoTimeout, OfAMethodWithoutLimitsIsUnspoken) {
    EXPECT_EQ(found("unspoken", {{"\\io\\default_type", 6}, {"\\io\\output_timeout", 4}}),
              Lines{"warning \\io\\output_timeout = 4 @ \\io\\method\\6\\max_output_timeout = : The "
                    "description tells no "
                    "limits of it."});
}

TEST(BaudRate, OfTheMethodPasses) {
    EXPECT_EQ(looked("io-baud-rate", {{"\\io\\serial\\baud_rate", 19200}}),
              Lines{"passed \\io\\serial\\baud_rate @ \\io\\method\\4\\baudrates\\1\\rate"});
}

TEST(BaudRate, ThatTheMethodHasNotIsFound) {
    EXPECT_EQ(found("io-baud-rate", {{"\\io\\serial\\baud_rate", 300}}),
              Lines{"error \\io\\serial\\baud_rate = 300 @ \\io\\method\\4\\baudrates = : Output by 4 "
                    "(RS232), the device's default, has no baud rate of 300. (9600; 19200)"});
}

TEST(BaudRate, OfAMethodThatIsNotInUseIsAWarning) {
    EXPECT_EQ(found("io-baud-rate", {{"\\io\\default_type", 6}, {"\\io\\serial\\baud_rate", 300}}),
              Lines{"warning \\io\\serial\\baud_rate = 300 @ \\io\\method\\4\\baudrates = : Output by 4 "
                    "(RS232) has no baud "
                    "rate of 300. (9600; 19200)"});
}

TEST(BaudRate, OfAMethodThatTheDeviceHasNotIsFound) {
    pm::Tree device = small_device();
    device.erase("\\io\\method\\4");
    EXPECT_EQ(answer_of("io-baud-rate", tree_of({{"\\io\\serial\\baud_rate", 9600}}), device).findings,
              Lines{"error \\io\\serial\\baud_rate = 9600 @ \\io\\method = : The device has no output by 4 "
                    "(RS232), the device's default. (6, Network)"});
}

TEST(IoProtocol, OfTheMethodPasses) {
    EXPECT_EQ(looked("io-protocol", {{"\\io\\serial\\protocol", text("7E1")}}),
              Lines{"passed \\io\\serial\\protocol @ \\io\\method\\4\\protocol\\1"});
}

TEST(IoProtocol, ThatTheMethodHasNotIsFound) {
    EXPECT_EQ(found("io-protocol", {{"\\io\\serial\\protocol", text("7O2")}}),
              Lines{"error \\io\\serial\\protocol = 7O2 @ \\io\\method\\4\\protocol = : Output by 4 (RS232), "
                    "the device's default, has no protocol \"7O2\". (7E1; 8N1, acht Bits)"});
}

TEST(IoProtocol, OfTheseBitsPasses) {
    EXPECT_EQ(looked("io-protocol", {{"\\Plotter/User\\DataBits", 7},
                                     {"\\Plotter/User\\StopBits", 1},
                                     {"\\Plotter/User\\Parity", 2}}),
              Lines{"passed \\Plotter/User\\DataBits @ \\io\\method\\4\\protocol\\1"});
}

TEST(IoProtocol, OfBitsThatDoNotGoTogetherIsFound) {
    EXPECT_EQ(found("io-protocol", {{"\\Plotter/User\\DataBits", 8}, {"\\Plotter/User\\Parity", 2}}),
              Lines{"error \\Plotter/User\\DataBits = 8 @ \\io\\method\\4\\protocol = : Output by 4 (RS232), "
                    "the device's default, has no protocol of these data bits, stop bits and parity. (8N1, "
                    "acht Bits; 7E1)"});
}

TEST(Handshake, OfTheMethodPasses) {
    EXPECT_EQ(looked("io-handshake", {{"\\io\\serial\\handshake", 2}}),
              Lines{"passed \\io\\serial\\handshake @ \\io\\method\\4\\handshakes"});
}

TEST(Handshake, ThatTheMethodHasNotIsFound) {
    EXPECT_EQ(
        found("io-handshake", {{"\\io\\serial\\handshake", 3}}),
        Lines{
            "error \\io\\serial\\handshake = 3 @ \\io\\method\\4\\handshakes = 6: The device doesn't offer "
            "handshake 3 (fXIn + fXOut) for output by 4 (RS232), the device's default. (2, fXOut; 4, Cts)"});
}

TEST(FileExtension, OfTheDevicePasses) {
    EXPECT_EQ(looked("io-extension", {{"\\io\\file_extension", text("plt")}}),
              Lines{"passed \\io\\file_extension @ \\io\\default_plot_file_extension"});
}

TEST(FileExtension, AnotherIsANote) {
    EXPECT_EQ(found("io-extension", {{"\\io\\file_extension", text("hpg")}}),
              Lines{"note \\io\\file_extension = hpg @ \\io\\default_plot_file_extension = plt: The device's "
                    "plot files end in "
                    "\"plt\". (plt)"});
}

TEST(StartStrings, ThatTheDeviceTakesPass) {
    EXPECT_EQ(looked("start-strings",
                     {{"\\init_term\\pre_init", text("A")}, {"\\init_term\\termination", pm::Bytes(1)}}),
              (Lines{"passed \\init_term\\pre_init @ \\init_term\\abilities",
                     "passed \\init_term\\termination @ \\init_term\\abilities"}));
}

TEST(StartStrings, ThatTheDeviceDoesNotTakeAreFoundUnlessEmpty) {
    EXPECT_EQ(found("start-strings", {{"\\init_term\\post_init", text("A")}}),
              Lines{"error \\init_term\\post_init = A @ \\init_term\\abilities = 505: The device takes no "
                    "string after its "
                    "initialisation."});
    EXPECT_EQ(looked("start-strings", {{"\\init_term\\post_init", text("")}}),
              Lines{"passed \\init_term\\post_init @ \\init_term\\abilities"});
}

constexpr const char* io_type = "\\io\\default_type";
constexpr const char* rate = "\\io\\serial\\baud_rate";
constexpr const char* output_timeout = "\\io\\output_timeout";
constexpr const char* data_bits = "\\Plotter/User\\DataBits";
constexpr const char* stop_bits = "\\Plotter/User\\StopBits";
constexpr const char* parity = "\\Plotter/User\\Parity";
constexpr const char* method_4 = "\\io\\method\\4";

TEST(IoMethod, WithoutAWordIsToldByItsNumber) {
    const std::vector<Item> others{{"\\io\\method\\9\\caps_type", 0},
                                   {"\\io\\method\\10\\caps_type", 0},
                                   {"\\io\\method\\x\\caps_type", 0},
                                   {"\\io\\method\\-\\caps_type", 0}};
    expect_said("io-method",
                {{{{io_type, 5}},
                  {},
                  others,
                  {"error \\io\\default_type = 5 @ \\io\\method = : The device has no output by 5 "
                   "(Parallel). (4, RS232; 6, Network; 9; 10; x; -)"}},
                 {{{io_type, 11}},
                  {},
                  {},
                  {"error \\io\\default_type = 11 @ \\io\\method = : The device has no output by 11. (4, "
                   "RS232; 6, Network)"}},
                 {{{io_type, -1}},
                  {},
                  {},
                  {"error \\io\\default_type = -1 @ \\io\\method = : The device has no output by -1. (4, "
                   "RS232; 6, Network)"}},
                 {{{io_type, text("z")}},
                  {},
                  {},
                  {"error \\io\\default_type = z @ \\io\\method = : The device has no output by z. (4, "
                   "RS232; 6, Network)"}},
                 {{{io_type, 2.5}},
                  {},
                  {},
                  {"error \\io\\default_type = 2.5 @ \\io\\method = : The device has no output by 2.5. (4, "
                   "RS232; 6, Network)"}},
                 {{{io_type, 10}}, {}, others, {"passed \\io\\default_type @ \\io\\method\\10"}}});
}

TEST(IoMethod, ToAFileOfTheDevicePasses) {
    expect_said("io-method", {{{{"\\io\\plot_to_file", true}},
                               {},
                               {{"\\io\\method\\2\\caps_type", 0}},
                               {"passed \\io\\plot_to_file @ \\io\\method"}}});
}

TEST(IoParameter, OfAMethodThatIsNotThereIsToldOfOnce) {
    expect_said("io-timeout", {{{{output_timeout, 5}, {io_type, 5}}, {}, {}, {}},
                               {{{output_timeout, 5}},
                                {io_type},
                                {{io_type, 5}},
                                {"error \\io\\output_timeout = 5 @ \\io\\method = : The device has no output "
                                 "by 5 (Parallel), the device's default. (4, RS232; 6, Network)"}},
                               {{{output_timeout, 5}},
                                {io_type},
                                {{io_type, text("none")}},
                                {"error \\io\\output_timeout = 5 @ \\io\\method = : The device has no output "
                                 "by none, the device's default. (4, RS232; 6, Network)"}}});
    expect_said("io-baud-rate", {{{{rate, 9600}, {io_type, 6}},
                                  {method_4},
                                  {},
                                  {"warning \\io\\serial\\baud_rate = 9600 @ \\io\\method = : The device has "
                                   "no output by 4 (RS232). (6, Network)"}},
                                 {{{rate, 9600}, {io_type, 4}}, {method_4}, {}, {}},
                                 {{{rate, 9600}},
                                  {method_4},
                                  {},
                                  {"error \\io\\serial\\baud_rate = 9600 @ \\io\\method = : The device has "
                                   "no output by 4 (RS232), the device's default. (6, Network)"}}});
    expect_said("io-protocol", {{{{"\\io\\serial\\protocol", text("8N1")}},
                                 {method_4},
                                 {},
                                 {"error \\io\\serial\\protocol = 8N1 @ \\io\\method = : The device has no "
                                  "output by 4 (RS232), the device's default. (6, Network)"}},
                                {{{data_bits, 8}},
                                 {method_4},
                                 {},
                                 {"error \\Plotter/User\\DataBits = 8 @ \\io\\method = : The device has no "
                                  "output by 4 (RS232), the device's default. (6, Network)"}}});
    expect_said("io-handshake", {{{{"\\io\\serial\\handshake", 2}},
                                  {method_4},
                                  {},
                                  {"error \\io\\serial\\handshake = 2 @ \\io\\method = : The device has no "
                                   "output by 4 (RS232), the device's default. (6, Network)"}}});
}

TEST(IoParameter, OfAMethodThatIsNotInUseIsAWarningUnlessItIsADefault) {
    const Item network{io_type, 6};
    expect_said("io-baud-rate",
                {{{network, {"\\io\\method\\4\\default_baud_rate", 300}},
                  {},
                  {},
                  {"error \\io\\method\\4\\default_baud_rate = 300 @ \\io\\method\\4\\baudrates = : Output "
                   "by 4 (RS232) has no baud rate of 300. (9600; 19200)"}}});
    expect_said("io-handshake",
                {{{network, {"\\io\\serial\\handshake", 3}},
                  {},
                  {},
                  {"warning \\io\\serial\\handshake = 3 @ \\io\\method\\4\\handshakes = 6: The device "
                   "doesn't offer handshake 3 (fXIn + fXOut). (2, fXOut; 4, Cts)"}},
                 {{network, {"\\io\\serial\\handshake", 2}},
                  {},
                  {},
                  {"passed \\io\\serial\\handshake @ \\io\\method\\4\\handshakes"}},
                 {{network, {"\\io\\serial\\handshake", 0}},
                  {},
                  {},
                  {"passed \\io\\serial\\handshake @ \\io\\method\\4\\handshakes"}}});
    const auto map =
        pm::kit::load_map(R"({"settings": [{"setting": "output_timeout", "path": "\\wait", "key": "4"}]})");
    expect_said("io-timeout",
                {{{network, {"\\wait", 1}},
                  {},
                  {},
                  {"warning \\wait = 1 @ \\io\\method\\4\\min_output_timeout = 5: The timeout of output, 1, "
                   "is below the least, 5. (5 to 300)"}},
                 {{network, {"\\wait", 5}}, {}, {}, {"passed \\wait @ \\io\\method\\4\\max_output_timeout"}}},
                {.map = &map});
}

TEST(IoProtocol, OfBitsIsComparedByThoseThatCanBeRead) {
    expect_said("io-protocol", {{{{data_bits, 7}, {parity, text("even")}},
                                 {},
                                 {},
                                 {"passed \\Plotter/User\\DataBits @ \\io\\method\\4\\protocol\\1",
                                  "unspoken \\Plotter/User\\Parity @ "}},
                                {{{stop_bits, 1}, {parity, 2}},
                                 {},
                                 {},
                                 {"passed \\Plotter/User\\StopBits @ \\io\\method\\4\\protocol\\1"}},
                                {{{stop_bits, 2}},
                                 {},
                                 {},
                                 {"error \\Plotter/User\\StopBits = 2 @ \\io\\method\\4\\protocol = : Output "
                                  "by 4 (RS232), the device's default, has no protocol of these data bits, "
                                  "stop bits and parity. (8N1, acht Bits; 7E1)"}},
                                {{{parity, 2}},
                                 {"\\io\\method\\4\\protocol\\1\\parity"},
                                 {},
                                 {"error \\Plotter/User\\Parity = 2 @ \\io\\method\\4\\protocol = : Output "
                                  "by 4 (RS232), the device's default, has no protocol of these data bits, "
                                  "stop bits and parity. (8N1, acht Bits; 7E1)"}}});
}

TEST(IoProtocol, OfBitsIsToldOfAtTheFirstThatCanBeRead) {
    expect_said("io-protocol", {{{{data_bits, text("eight")}, {parity, 2}},
                                 {},
                                 {},
                                 {"unspoken \\Plotter/User\\DataBits @ ",
                                  "passed \\Plotter/User\\Parity @ \\io\\method\\4\\protocol\\1"}},
                                {{{data_bits, text("eight")}, {parity, 1}},
                                 {},
                                 {},
                                 {"error \\Plotter/User\\Parity = 1 @ \\io\\method\\4\\protocol = : Output "
                                  "by 4 (RS232), the device's default, has no protocol of these data bits, "
                                  "stop bits and parity. (8N1, acht Bits; 7E1)",
                                  "unspoken \\Plotter/User\\DataBits @ "}}});
}

TEST(IoParameter, OfTheDefaultMethodIsToldOfAsSuch) {
    const Item timeout{"\\io\\output_timeout", 400};
    EXPECT_EQ(
        found("io-timeout", {timeout}),
        Lines{"error \\io\\output_timeout = 400 @ \\io\\method\\4\\max_output_timeout = 300: The timeout of "
              "output, 400, is above the most, 300, for output by 4 (RS232), the device's default. (5 to "
              "300)"});
    EXPECT_EQ(
        found("io-timeout", {timeout, {"\\io\\default_type", 4}}),
        Lines{"error \\io\\output_timeout = 400 @ \\io\\method\\4\\max_output_timeout = 300: The timeout of "
              "output, 400, is above the most, 300. (5 to 300)"});
    EXPECT_EQ(
        found("io-protocol", {{"\\io\\serial\\protocol", text("8N2")}}),
        Lines{"error \\io\\serial\\protocol = 8N2 @ \\io\\method\\4\\protocol = : Output by 4 (RS232), the "
              "device's default, has no protocol \"8N2\". (8N1, acht Bits; 7E1)"});
    EXPECT_EQ(found("io-handshake", {{"\\io\\serial\\handshake", 1}})
                      .at(0)
                      .find("for output by 4 (RS232), the device's default.") != std::string::npos,
              true);
    expect_said("io-timeout", {{{timeout},
                                {"\\io\\default_type"},
                                {{"\\io\\default_type", 2}},
                                {"error \\io\\output_timeout = 400 @ \\io\\method = : The device has no "
                                 "output by 2 (File), the device's default. (4, RS232; 6, Network)"}}});
}

TEST(IoProtocol, OfBitsWithoutACodeIsUnspoken) {
    EXPECT_EQ(
        found("unspoken", {{"\\Plotter/User\\DataBits", 3}}),
        Lines{
            "warning \\Plotter/User\\DataBits = 3 @  = : The value is no code that the map knows, so that it "
            "can't be compared."});
    EXPECT_EQ(found("io-protocol", {{"\\Plotter/User\\DataBits", 8}, {"\\Plotter/User\\StopBits", 2}}).size(),
              1U);
}

} // namespace
