#include <gtest/gtest.h>

#include "tests/AnswerParts.h"

namespace loamtest {

namespace {

TEST(EgressAclDrops, DistinguishNoCountFromZero) {
  Json state = smallSwitch();
  state["counters"]["egressAcl"] = {
      {"Ethernet3", 9223372036854775807}, {"Ethernet1", 0}, {"Loopback0", nullptr}};
  const std::vector<std::string> command = {"acl", "Loopback0", "Ethernet3", "Ethernet1", "Po1"};
  const auto row = [](const char* name, const char* mlag) {
    return line("%-10s %19s %19s\n", name, "n/a", mlag);
  };
  EXPECT_EQ(answer(state, command), aclHead() + row("Loopback0", "n/a") + row("Et3", "9223372036854775807") +
                                        row("Et1", "0") + row("Po1", "n/a"));
  EXPECT_EQ(answer(state, {"acl", "Loopback0", "Ethernet3", "Ethernet1", "Po1", "-j"}),
            R"({"interfaces":{"Loopback0":{},"Ethernet3":{"mlagPackets":9223372036854775807},)"
            R"("Ethernet1":{"mlagPackets":0},"Port-Channel1":{}}})"
            "\n");
}

TEST(EgressMtu, DistinguishesNoCountFromZero) {
  Json state = smallSwitch();
  state["status"]["fapIdToName"] = {{"30", "Aa"}, {"4", "Zz"}, {"9", "None"}};
  state["counters"]["egressMtu"] = {
      {"4", {{"enqueuedPackets", 0}, {"droppedPackets", 7}, {"totalPackets", 8}}},
      {"30", {{"totalPackets", 5}, {"droppedPackets", nullptr}}}};
  const auto row = [](const char* name, const char* enqueued, const char* dropped, const char* total) {
    return line("%-17s %19s %19s %19s\n", name, enqueued, dropped, total);
  };
  EXPECT_EQ(answer(state, {"mtu"}), mtuHead() + row("Zz", "0", "7", "8") + row("None", "n/a", "n/a", "n/a") +
                                        row("Aa", "n/a", "n/a", "5"));
  EXPECT_EQ(answer(state, {"mtu", "-j"}),
            R"({"destinations":{"Zz":{"enqueuedPackets":0,"droppedPackets":7,"totalPackets":8},"None":{},)"
            R"("Aa":{"totalPackets":5}}})"
            "\n");
}

}  // namespace

}  // namespace loamtest
