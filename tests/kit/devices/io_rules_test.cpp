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
    EXPECT_EQ(found("io-timeout", {{"\\io\\output_timeout", 4}, {"\\io\\input_timeout", 300}}),
              (Lines{"error \\io\\output_timeout = 4 @ \\io\\method\\4\\min_output_timeout = 5: The timeout "
                     "of output, 4, is "
                     "below the least, 5. (5 to 300)",
                     "error \\io\\input_timeout = 300 @ \\io\\method\\4\\max_input_timeout = 200: The "
                     "timeout of input, 300, "
                     "is above the most, 200. (5 to 200)"}));
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
                    "(RS232) has no baud rate "
                    "of 300. (9600; 19200)"});
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
                    "(RS232). (6, "
                    "Network)"});
}

TEST(IoProtocol, OfTheMethodPasses) {
    EXPECT_EQ(looked("io-protocol", {{"\\io\\serial\\protocol", text("7E1")}}),
              Lines{"passed \\io\\serial\\protocol @ \\io\\method\\4\\protocol\\1"});
}

TEST(IoProtocol, ThatTheMethodHasNotIsFound) {
    EXPECT_EQ(found("io-protocol", {{"\\io\\serial\\protocol", text("7O2")}}),
              Lines{"error \\io\\serial\\protocol = 7O2 @ \\io\\method\\4\\protocol = : Output by 4 (RS232) "
                    "has no protocol "
                    "\"7O2\". (7E1; 8N1, acht Bits)"});
}

TEST(IoProtocol, OfTheseBitsPasses) {
    EXPECT_EQ(looked("io-protocol", {{"\\Plotter/User\\DataBits", 7},
                                     {"\\Plotter/User\\StopBits", 1},
                                     {"\\Plotter/User\\Parity", 2}}),
              Lines{"passed \\Plotter/User\\DataBits @ \\io\\method\\4\\protocol\\1"});
}

TEST(IoProtocol, OfBitsThatDoNotGoTogetherIsFound) {
    EXPECT_EQ(found("io-protocol", {{"\\Plotter/User\\DataBits", 8}, {"\\Plotter/User\\Parity", 2}}),
              Lines{"error \\Plotter/User\\DataBits = 8 @ \\io\\method\\4\\protocol = : Output by 4 (RS232) "
                    "has no protocol of "
                    "these data bits, stop bits and parity. (8N1, acht Bits; 7E1)"});
}

TEST(Handshake, OfTheMethodPasses) {
    EXPECT_EQ(looked("io-handshake", {{"\\io\\serial\\handshake", 2}}),
              Lines{"passed \\io\\serial\\handshake @ \\io\\method\\4\\handshakes"});
}

TEST(Handshake, ThatTheMethodHasNotIsFound) {
    EXPECT_EQ(found("io-handshake", {{"\\io\\serial\\handshake", 3}}),
              Lines{"error \\io\\serial\\handshake = 3 @ \\io\\method\\4\\handshakes = 6: The device doesn't "
                    "offer handshake 3 "
                    "(fXIn + fXOut). (2, fXOut; 4, Cts)"});
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

} // namespace
