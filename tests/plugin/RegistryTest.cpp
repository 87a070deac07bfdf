#include <gmock/gmock.h>

#include <regex>
#include <sstream>

#include "LoamCounters/QueueCountersPrinter/CountersPrinter.h"
#include "LoamCounters/QueueCountersPrinter/IntfLists.h"
#include "loamshow/commands/RegistryReport.h"
#include "platform/Vane.h"
#include "platform/tabula.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

using namespace LoamCounters;
using testing::ElementsAre;
using testing::ThrowsMessage;
using Vane::OpCode;
using Vane::OpStatus;
using Vane::Value;

/// A null handle, accepted as an object of any type.
const Value none = Mote::Ptr<const Mote::Node>();

Mote::Ptr<Mote::Node> make(std::string_view type, const std::vector<Value>& arguments = {}) {
  return Vane::findType(type)->instance(arguments);
}

/// The result of a request of the generic attribute interface by the attribute's name.
Value requested(const Mote::Ptr<Mote::Node>& object, const char* attribute, OpCode op,
                const std::vector<Value>& arguments = {}, const Value& value = {}) {
  Value result;
  const U32 number = object->typeData()->type().numberOf(attribute).value();
  Vane::genericIfAttributeOp(*object, result, number, static_cast<U8>(op), arguments, value);
  return result;
}

// The numbers, names, types and flags that callers rely on.
TEST(Registry, HoldsWhatCallersRelyOn) {
  const std::string listing = loamshow::registryListing();
  EXPECT_THAT(words(listing), testing::ContainerEq(words(contentOf(REGISTRY))));

  // The JSON has the same contents, in another order.
  const Json json = Json::parse(loamshow::registryJson());
  std::string leaves;
  for (const Json flat = json.flatten(); const Json& leaf : flat) {
    leaves += (leaf.is_string() ? leaf.get<std::string>() : leaf.dump()) + " ";
  }
  const std::string contents = std::regex_replace(listing, std::regex("[(),]|: |Module |symbol |uses "), " ");
  EXPECT_THAT(words(leaves), testing::UnorderedElementsAreArray(words(contents)));
}

Mote::Ptr<Mote::Node> makePrinter() {
  return make("LoamCounters::CountersPrinter", {none, none, none, none, none, none, false});
}

// For each kind of attribute the valid op codes, with well-formed arguments.
TEST(Registry, AnswersAStatusForEveryOpCode) {
  const auto list = make("LoamCounters::IntfList");
  const auto lists = make("LoamCounters::AllIntfList");
  const auto printer = makePrinter();
  const MemoryFile file;
  const Nexo::IntfId intf("Ethernet1");
  using enum OpCode;
  const std::set<OpCode> keyed = {read, write, del, count, version, contains};
  const std::tuple<Mote::Ptr<Mote::Node>, U32, std::vector<Value>, Value, std::set<OpCode>> cases[] = {
      {list, 131, {}, intf, {count, front, back, enqueue, dequeue}},
      {list, 131, {U32{1}}, intf, {count, front, back, enqueue}},  // a dequeue takes no arguments
      {lists, 130, {}, list, {read, write}},
      {lists, 131, {U8{3}}, list, keyed},
      {make("LoamCounters::InterfaceTcContainer"), 130, {intf}, {}, keyed},
      {printer, 136, {}, false, {read}},
      {printer, 137, {none, none, none, none, none, true}, {}, {read, write, del}},
      {printer, 144, {file.fdNumber(), tabula::formatText}, {}, {call}},
  };
  Value result;
  for (const auto& [object, number, arguments, value, taken] : cases) {
    for (const int op : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 255}) {
      EXPECT_EQ(Vane::genericIfAttributeOp(*object, result, number, static_cast<U8>(op), arguments, value),
                taken.contains(static_cast<OpCode>(op)) ? OpStatus::done : OpStatus::opNotValid)
          << object->typeData()->type().name << " " << number << " op " << op;
    }
  }
  for (const U32 number : {0U, 129U, 145U, ~0U}) {
    EXPECT_EQ(Vane::genericIfAttributeOp(*printer, result, number, 0, {}), OpStatus::unknownAttribute);
  }
}

TEST(Registry, AccessorsAreTheSameForTheSameArguments) {
  const auto printer = makePrinter();
  const std::tuple<const char*, std::vector<Value>, std::vector<Value>> cases[] = {
      {"fapCounterAccessor", {none, none, none, none, none, false}, {none, none, none, none, none, true}},
      {"egressAclCountersAccessor", {none, none, none, false}, {none, none, none, true}}};
  for (const auto& [attribute, given, others] : cases) {
    const auto answered = [&, &name = attribute](OpCode op, const std::vector<Value>& arguments = {}) {
      return requested(printer, name, op, arguments).as<Mote::Ptr<const Mote::Node>>();
    };
    const auto first = answered(OpCode::read);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(answered(OpCode::write, given), first);
    const auto second = answered(OpCode::write, others);
    EXPECT_NE(second, first);
    EXPECT_EQ(answered(OpCode::write, others), second);
    EXPECT_EQ(answered(OpCode::del), second);
    EXPECT_EQ(answered(OpCode::read), nullptr);
    EXPECT_NE(answered(OpCode::write, others), nullptr) << "made anew from the same arguments";
  }
}

TEST(Registry, MistypedArgumentsAreExceptions) {
  const auto list = make("LoamCounters::IntfList");
  const auto lists = make("LoamCounters::AllIntfList");
  // As the only argument, or as the value, depending on what the attribute reads.
  const auto refused = [](const auto& object, const char* attribute, OpCode op, const Value& given,
                          const std::string& message) {
    EXPECT_THAT([&] { requested(object, attribute, op, {given}, given); },
                ThrowsMessage<Vane::InternalException>(message));
  };
  refused(makePrinter(), "showInterfacesEgressMtuCounters", OpCode::call, U32{1},
          "showInterfacesEgressMtuCounters: expected 2 arguments, got 1");
  refused(list, "intf", OpCode::enqueue, U32{7}, "expected Nexo::IntfId, got U32");
  refused(lists, "intfList", OpCode::write, lists,
          "expected LoamCounters::IntfList::Ptr, got Mote::Node::Ptr");
  refused(lists, "intfList", OpCode::write, IntfList::PtrConst(intfListFactory()),
          "expected LoamCounters::IntfList::Ptr, got LoamCounters::IntfList::PtrConst");
  refused(lists, "specialIngressIntfList", OpCode::read, SpecialEgressIntfOrdering{},
          "specialIngressIntfList: argument 1: expected LoamCounters::SpecialIngressIntfOrdering, got "
          "LoamCounters::SpecialEgressIntfOrdering");
  EXPECT_THROW(requested(lists, "specialIngressIntfList", OpCode::read, {U8{11}}), Vane::RangeException);
  EXPECT_THROW(make("LoamCounters::TcContainer", {U32{1}}), Vane::InternalException);
  EXPECT_THROW(make("LoamCounters::SpecialIngressIntfOrdering"), Vane::InternalException);
}

TEST(Registry, AnOperationAnswersItsResult) {
  const Value stillDue = requested(
      make("LoamCounters::DebugCountersPrinter"), "printDebugCounter", OpCode::call,
      {U32{0}, U32{1}, none, Mote::String(), none, false, true, Mote::String(), U32{0}, Mote::String()});
  EXPECT_TRUE(stillDue.as<bool>());
}

TEST(Registry, ForgetsAModuleThatLeaves) {
  static constexpr Vane::TypeDescriptor types[] = {{"Guest::Kind", {}, 0, {}, {}, nullptr}};
  static constexpr Vane::ModuleDescriptor guest{"Guest", "", {}, types};
  {
    const Vane::Registration registration(guest);
    EXPECT_EQ(Vane::findType("Guest::Kind"), types);
  }
  EXPECT_EQ(Vane::findType("Guest::Kind"), nullptr);
}

// The entry at a cursor stays what it is when it has gone from its collection.
TEST(Registry, CursorsWalkEveryCollection) {
  const auto lists = make("LoamCounters::AllIntfList");
  const auto list = make("LoamCounters::IntfList");
  const char* const attribute = "specialIngressIntfList";
  for (const U8 kind : {U8{9}, U8{0}, U8{5}}) requested(lists, attribute, OpCode::write, {kind}, list);
  std::vector<U32> kinds;  // by number, as a host uses them
  for (const auto at = Vane::genericIfCursor(*lists, 131); at->valid(); at->advance()) {
    kinds.push_back(at->key().as<U8>());
    if (kinds.back() != 9) at->del();
    EXPECT_EQ(at->item().as<Mote::Ptr<Mote::Node>>(), list);
  }
  EXPECT_THAT(kinds, ElementsAre(0, 5, 9));
  EXPECT_EQ(requested(lists, attribute, OpCode::count).as<U32>(), 1U);

  const auto containers = make("LoamCounters::InterfaceTcContainer");
  std::set<std::string> names;
  for (const char* intf : {"b", "a", "c"}) {
    requested(containers, "tcPerIntf", OpCode::write, {Nexo::IntfId(intf)});
    requested(list, "intf", OpCode::enqueue, {}, Nexo::IntfId(intf));
  }
  for (const auto at = Vane::genericIfCursor(*containers, 130); at->valid(); at->advance()) {
    const auto intf = at->key().as<Nexo::IntfId>();
    names.insert(intf.stringValue().c_str());
    at->del();
    EXPECT_EQ(at->item().as<TcContainer::PtrConst>()->intfId(), intf);
  }
  EXPECT_THAT(names, ElementsAre("a", "b", "c"));
  EXPECT_EQ(requested(containers, "tcPerIntf", OpCode::count).as<U32>(), 0U);

  EXPECT_EQ(requested(list, "intf", OpCode::front).as<Nexo::IntfId>(), Nexo::IntfId("b"));
  EXPECT_EQ(requested(list, "intf", OpCode::back).as<Nexo::IntfId>(), Nexo::IntfId("c"));
  std::string queued;
  const auto at = Vane::genericIfCursor(*list, 131);
  for (; at->valid(); at->advance()) {
    queued += at->item().as<Nexo::IntfId>().stringValue();
    requested(list, "intf", OpCode::dequeue);
  }
  EXPECT_EQ(queued, "bac") << "what was queued when the walk began";
  EXPECT_THROW(at->del(), Vane::InternalException);
  EXPECT_EQ(Vane::genericIfCursor(*lists, 130), nullptr) << "not a collection";
}

TEST(Registry, CollectionsHoldWhatWasSet) {
  const auto counters = make("LoamCounters::TcContainer", {Nexo::IntfId("e")});
  const auto tc = [&](OpCode op, const Value& value = {}) {
    return requested(counters, "tc", op, {U32{3}}, value);
  };
  const IngressCounter counter{{5, 6, 7, 8}};
  tc(OpCode::write, IngressCounter());
  const U32 version = tc(OpCode::version).as<U32>();
  tc(OpCode::write, counter);
  EXPECT_NE(tc(OpCode::version).as<U32>(), version);
  EXPECT_TRUE(tc(OpCode::contains).as<bool>());
  EXPECT_EQ(tc(OpCode::read).as<IngressCounter>(), counter);
  EXPECT_EQ(tc(OpCode::del).as<IngressCounter>(), counter);
  EXPECT_FALSE(tc(OpCode::contains).as<bool>());
  EXPECT_EQ(tc(OpCode::read).as<IngressCounter>(), IngressCounter()) << "neutral, as it is not there";

  const auto lists = make("LoamCounters::AllIntfList");
  for (const Value& list : {Value(make("LoamCounters::IntfList")), none}) {  // setting null removes the entry
    requested(lists, "specialIngressIntfList", OpCode::write, {U8{5}}, list);
  }
  EXPECT_EQ(requested(lists, "specialIngressIntfList", OpCode::count).as<U32>(), 0U);
}

// The test of the registry's listing compares the names.
template <class Kind>
void expectNamesAndNumbers(auto kindOf) {
  const Vane::TypeDescriptor& type = *Vane::findType(Vane::typeName<Kind>);
  for (U32 number = 0; number < type.values.size(); ++number) {
    const Kind kind = kindOf(number);
    const std::string name = (std::ostringstream() << kind).str();
    EXPECT_EQ(name, type.values[number]);
    EXPECT_EQ(kindOf(Mote::String(name)), kind);
    Kind parsed{};
    EXPECT_TRUE(sequenceToValue(name.data(), name.data() + name.size(), parsed));
    EXPECT_EQ(parsed, kind);
    EXPECT_FALSE(sequenceToValue(name.data(), name.data() + name.size() - 1, parsed));
  }
  const std::string full(type.name);
  const auto outOfRange = ThrowsMessage<Vane::RangeException>(full + "::value < " + full + "::min or > " +
                                                              full + "::max not allowed");
  EXPECT_THAT([&] { kindOf(11U); }, outOfRange);
  EXPECT_THAT([] { stringValue(static_cast<Kind>(11)); }, outOfRange);
  EXPECT_THAT([&] { kindOf(Mote::String("x")); },
              ThrowsMessage<Vane::RangeException>(full + " has no value x"));
}

TEST(IntfLists, KindsHaveNamesAndNumbers) {
  using Ingress = SpecialIngressIntfOrdering;
  using Egress = SpecialEgressIntfOrdering;
  expectNamesAndNumbers<Ingress>([](auto given) { return SpecialIngressIntfOrderingInstance(given); });
  expectNamesAndNumbers<Egress>([](auto given) { return SpecialEgressIntfOrderingInstance(given); });
}

}  // namespace

}  // namespace loamtest
