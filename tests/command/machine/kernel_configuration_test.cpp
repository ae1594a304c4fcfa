#include "command/machine/kernel_configuration.h"

#include <gmock/gmock.h>

#include "tests/support/edid_builder.h"

using testing::HasSubstr;
using testing::Not;

namespace {

TDrmOutput MakeOutput(const std::string& connector, const std::string& name) {
  return {connector, TEdidBuilder().Name(0, name).Build()};
}

TDrmCard MakeCard(const std::string& name, unsigned int bus, const std::vector<TDrmOutput>& outputs) {
  return {name, TPciDevice{0, bus, 2, 1, 0x1AF4, 0x1050}, std::nullopt, outputs};
}

}  // namespace

TEST(KernelConfiguration, HasThreeSectionsForEachOutputAndOneForACardWithoutAny) {
  TKernelGraphics graphics;
  graphics.units = {MakeOutput("card0-DP-2", "Acme 27")};
  graphics.cards = {MakeCard("card0", 16, {{"card0-DP-1", {}}, graphics.units[0]}), MakeCard("card1", 3, {})};
  graphics.cards[0].videoMemory = 8192;
  graphics.names["card0"] = {"Example Graphics", "EG2 [Desk]"};
  graphics.modes["card0-DP-2"] = {3840, 2160, 30U};
  EXPECT_EQ(MakeKernelConfiguration(graphics),
            "# Made by displayinfo from what the kernel's graphics drivers know: this machine has no such file.\n"
            "\nSection \"Device\"\n\tIdentifier \"card0-DP-2\"\n\tBusID \"PCI:16:2:1\"\n"
            "\tVendorName \"Example Graphics\"\n\tBoardName \"EG2 [Desk]\"\n\tVideoRam 8192\nEndSection\n"
            "\nSection \"Monitor\"\n\tIdentifier \"Monitor of card0-DP-2\"\n\tModelName \"Acme 27\"\nEndSection\n"
            "\nSection \"Screen\"\n\tIdentifier \"Screen of card0-DP-2\"\n\tDevice \"card0-DP-2\"\n"
            "\tMonitor \"Monitor of card0-DP-2\"\n\tDefaultDepth 30\n"
            "\tSubSection \"Display\"\n\t\tDepth 30\n\t\tModes \"3840x2160\"\n\tEndSubSection\nEndSection\n"
            "\nSection \"Device\"\n\tIdentifier \"card0-DP-1\"\n\tBusID \"PCI:16:2:1\"\n"
            "\tVendorName \"Example Graphics\"\n\tBoardName \"EG2 [Desk]\"\n\tVideoRam 8192\nEndSection\n"
            "\nSection \"Monitor\"\n\tIdentifier \"Monitor of card0-DP-1\"\nEndSection\n"
            "\nSection \"Screen\"\n\tIdentifier \"Screen of card0-DP-1\"\n\tDevice \"card0-DP-1\"\n"
            "\tMonitor \"Monitor of card0-DP-1\"\n\tDefaultDepth 24\nEndSection\n"
            "\nSection \"Device\"\n\tIdentifier \"card1\"\n\tBusID \"PCI:3:2:1\"\nEndSection\n");
}

TEST(KernelConfiguration, TakesTheOutputsInTheOrderOfTheUnits) {
  TKernelGraphics graphics;
  graphics.cards = {MakeCard("card0", 1, {MakeOutput("card0-DP-1", "A"), MakeOutput("card0-DP-2", "A")}),
                    MakeCard("card1", 2, {MakeOutput("card1-DP-3", "B")})};
  graphics.units = {graphics.cards[0].outputs[0], graphics.cards[1].outputs[0], graphics.cards[0].outputs[1]};
  const std::string text = MakeKernelConfiguration(graphics);
  const auto position = [&](const std::string& connector) { return text.find("Identifier \"" + connector + "\""); };
  EXPECT_LT(position("card0-DP-1"), position("card1-DP-3"));
  EXPECT_LT(position("card1-DP-3"), position("card0-DP-2"));
}

TEST(KernelConfiguration, LetsNoNameOutOfItsQuotesOrItsLine) {
  TKernelGraphics graphics;
  graphics.units = {MakeOutput("card0-DP-1", "A\"\rB\x7F\fC\x01")};
  graphics.cards = {MakeCard("card0", 1, graphics.units)};
  EXPECT_THAT(MakeKernelConfiguration(graphics), HasSubstr("\tModelName \"A' B  C \"\n"));
}

TEST(KernelConfiguration, TellsTheDomainOfACardBeyondTheFirst) {
  TKernelGraphics graphics;
  graphics.cards = {MakeCard("card0", 1, {})};
  graphics.cards[0].pci->domain = 2;
  EXPECT_THAT(MakeKernelConfiguration(graphics), HasSubstr("BusID \"PCI:1@2:2:1\""));
}

TEST(KernelConfiguration, HasNoBusIdForACardOnAnotherBus) {
  TKernelGraphics graphics;
  graphics.cards = {{"card0", std::nullopt, std::nullopt, {}}};
  EXPECT_THAT(MakeKernelConfiguration(graphics), Not(HasSubstr("BusID")));
}

TEST(KernelConfiguration, CommentsOutAVideoMemoryWhoseBytesDoNotFitIntoThirtyTwoBits) {
  TKernelGraphics graphics;
  graphics.cards = {MakeCard("card0", 1, {})};
  graphics.cards[0].videoMemory = 4194303;
  EXPECT_THAT(MakeKernelConfiguration(graphics), HasSubstr("\tVideoRam 4194303\n"));
  graphics.cards[0].videoMemory = 4194304;
  EXPECT_THAT(MakeKernelConfiguration(graphics), HasSubstr("\t#VideoRam 4194304\n"));
}
