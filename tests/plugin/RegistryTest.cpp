#include <gmock/gmock.h>

#include <fstream>
#include <regex>
#include <sstream>

#include "LoamCounters/DebugCountersPrinter/DescriptorMappings.h"
#include "LoamCounters/QueueCountersPrinter/CountersPrinter.h"
#include "LoamCounters/QueueCountersPrinter/IntfLists.h"
#include "loamshow/commands/Plugin.h"
#include "loamshow/commands/RegistryReport.h"
#include "platform/Vane.h"
#include "platform/tabula.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

using namespace LoamCounters;
using testing::ElementsAre;
using Vane::OpCode;
using Vane::OpStatus;
using Vane::Value;

std::vector<Value> printerArguments(bool skeinMountMode) {
  return {Mote::make<Hardware::Loam::Status>(),
          Mote::make<LoamTm::TmMapping>(),
          Mote::make<Hardware::Loam::InternalLagClientStatus>(),
          Mote::make<TrafficClassMapping>(),
          Mote::make<Hardware::Loam::CounterEngineStatus>(),
          Mote::make<Cortex::EntityManager>(),
          skeinMountMode};
}

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
  std::ifstream file(REGISTRY);
  const std::string expected{std::istreambuf_iterator<char>(file), {}};
  const std::string listing = loamshow::registryListing();
  EXPECT_THAT(words(listing), testing::ContainerEq(words(expected)));

  // The JSON has the same contents, in another order.
  const auto sorted = [](const std::string& text, const char* separators) {
    std::vector<std::string> all = words(std::regex_replace(text, std::regex(separators), " "));
    std::sort(all.begin(), all.end());
    return all;
  };
  const Json json = Json::parse(loamshow::registryJson());
  std::string leaves;
  for (const Json flat = json.flatten(); const Json& leaf : flat) {
    leaves += (leaf.is_string() ? leaf.get<std::string>() : leaf.dump()) + " ";
  }
  EXPECT_EQ(sorted(leaves, " "), sorted(listing, "[(),]|: |Module |symbol |uses "));
}

// For each kind of attribute the valid op codes, with well-formed arguments.
TEST(Registry, AnswersAStatusForEveryOpCode) {
  const auto list = make("LoamCounters::IntfList");
  const auto lists = make("LoamCounters::AllIntfList");
  const auto containers = make("LoamCounters::InterfaceTcContainer");
  const auto printer = make("LoamCounters::CountersPrinter", printerArguments(true));
  const std::vector<Value> sources = printerArguments(true);
  const MemoryFile file;
  const Nexo::IntfId intf("Ethernet1");
  using Node = Mote::Ptr<Mote::Node>;
  using enum OpCode;
  const std::set<OpCode> keyed = {read, write, del, count, version, contains};
  const std::tuple<Node, U32, std::vector<Value>, Value, std::set<OpCode>> cases[] = {
      {list, 131, {}, intf, {count, front, back, enqueue, dequeue}},
      {list, 131, {U32{1}}, intf, {count, front, back, enqueue}},  // a dequeue takes no arguments
      {lists, 130, {}, list, {read, write}},
      {lists, 131, {U8{3}}, list, keyed},
      {containers, 130, {intf}, {}, keyed},
      {printer, 136, {}, false, {read}},
      {printer,
       137,
       {sources[0], sources[1], sources[2], sources[3], sources[5], true},
       {},
       {read, write, del}},
      {printer, 138, {sources[0], sources[4], sources[5], false}, {}, {read, write, del}},
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
  EXPECT_EQ(Vane::genericIfAttributeOp(*list, result, 130, 0, {}), OpStatus::unknownAttribute);
}

TEST(Registry, AccessorsAreTheSameForTheSameArguments) {
  const std::vector<Value> arguments = printerArguments(false);
  const std::vector<Value> others = printerArguments(true);
  const auto printer = make("LoamCounters::CountersPrinter", arguments);
  const auto expectIdentity = [&](const char* attribute, std::initializer_list<std::size_t> taken) {
    const auto answered = [&](OpCode op, const std::vector<Value>& sources = {}) {
      return requested(printer, attribute, op, sources).as<Mote::Ptr<const Mote::Node>>();
    };
    auto last = answered(OpCode::read);
    ASSERT_NE(last, nullptr);
    std::vector<Value> sources;
    for (const std::size_t i : taken) sources.push_back(arguments[i]);
    EXPECT_EQ(answered(OpCode::write, sources), last) << attribute;
    for (std::size_t i = 0; i < sources.size(); ++i) {
      sources[i] = others[taken.begin()[i]];
      const auto other = answered(OpCode::write, sources);
      EXPECT_NE(other, last) << attribute << " argument " << i;
      EXPECT_EQ(answered(OpCode::write, sources), other);
      last = other;
    }
    EXPECT_EQ(answered(OpCode::read), last);
    EXPECT_EQ(answered(OpCode::del), last);
    EXPECT_EQ(answered(OpCode::read), nullptr);
    EXPECT_NE(answered(OpCode::write, sources), nullptr) << "made anew from the same arguments";
  };
  expectIdentity("fapCounterAccessor", {0, 1, 2, 3, 5, 6});
  expectIdentity("egressAclCountersAccessor", {0, 4, 5, 6});
  EXPECT_FALSE(requested(printer, "skeinMountMode", OpCode::read).as<bool>());
}

TEST(Registry, MistypedArgumentsAreExceptions) {
  const auto printer = make("LoamCounters::CountersPrinter", printerArguments(false));
  const auto list = make("LoamCounters::IntfList");
  const auto lists = make("LoamCounters::AllIntfList");
  const auto raised = [&](const Mote::Ptr<Mote::Node>& object, const char* attribute, OpCode op,
                          const std::vector<Value>& arguments, const Value& value = {}) -> std::string {
    try {
      requested(object, attribute, op, arguments, value);
    } catch (const Vane::InternalException& error) {
      return error.what();
    }
    return "";
  };
  EXPECT_EQ(raised(printer, "showInterfacesEgressMtuCounters", OpCode::call, {tabula::formatText}),
            "showInterfacesEgressMtuCounters: expected 2 arguments, got 1");
  EXPECT_EQ(raised(printer, "showInterfacesQueueDropsCounters", OpCode::call,
                   {U32{1}, tabula::formatText, printer}),
            "showInterfacesQueueDropsCounters: argument 3: expected LoamCounters::IntfList::PtrConst, got "
            "Mote::Node::Ptr");
  EXPECT_EQ(raised(list, "intf", OpCode::enqueue, {}, U32{7}), "expected Nexo::IntfId, got U32");
  EXPECT_EQ(raised(lists, "intfList", OpCode::write, {}, IntfList::PtrConst(intfListFactory())),
            "expected LoamCounters::IntfList::Ptr, got LoamCounters::IntfList::PtrConst");
  EXPECT_THROW(requested(lists, "specialIngressIntfList", OpCode::read, {U8{11}}), Vane::RangeException);
  EXPECT_EQ(raised(lists, "specialIngressIntfList", OpCode::read, {SpecialEgressIntfOrdering{}}),
            "specialIngressIntfList: argument 1: expected LoamCounters::SpecialIngressIntfOrdering, got "
            "LoamCounters::SpecialEgressIntfOrdering");
  EXPECT_THROW(make("LoamCounters::TcContainer", {U32{1}}), Vane::InternalException);
  EXPECT_THROW(make("LoamCounters::SpecialIngressIntfOrdering"), Vane::InternalException);
}

TEST(Registry, AnOperationAnswersItsResult) {
  const auto printer = make("LoamCounters::DebugCountersPrinter");
  const Value none = Mote::Ptr<const Mote::Node>();
  for (const bool sectionNameIsDue : {true, false}) {
    const Value stillDue = requested(printer, "printDebugCounter", OpCode::call,
                                     {U32{0}, tabula::formatText, none, Mote::String(), none, false,
                                      sectionNameIsDue, Mote::String(), U32{0}, Mote::String()});
    EXPECT_EQ(stillDue.as<bool>(), sectionNameIsDue);
  }
}

TEST(Registry, ForgetsAModuleThatLeaves) {
  static constexpr std::array types = {[] {
    Vane::TypeDescriptor type;
    type.name = "Guest::Kind";
    return type;
  }()};
  static constexpr Vane::ModuleDescriptor guest{"Guest", "", {}, types};
  {
    const Vane::Registration registration(guest);
    EXPECT_EQ(Vane::findType("Guest::Kind"), types.data());
  }
  EXPECT_EQ(Vane::findType("Guest::Kind"), nullptr);
}

TEST(Registry, CursorsWalkEveryCollection) {
  const auto ports = make("LoamCounters::OrderedSystemPhyPortId");
  using Port = Hardware::Loam::SystemPhyPortId;
  for (const U64 port : {300U, 12U, 300U, 40U}) {
    requested(ports, "systemPhyPortId", OpCode::write, {Port(port)}, true);
  }
  std::vector<U64> keys;
  for (const auto at = Vane::genericIfCursor(*ports, 130); at->valid(); at->advance()) {
    keys.push_back(at->key().as<Port>().value());
    EXPECT_TRUE(at->item().as<bool>());
    if (keys.back() == 40) at->del();
  }
  EXPECT_THAT(keys, ElementsAre(12, 40, 300));
  EXPECT_EQ(requested(ports, "systemPhyPortId", OpCode::count).as<U32>(), 2U);

  // Kinds by number, as a host uses them.
  const auto lists = make("LoamCounters::AllIntfList");
  for (const char* attribute : {"specialIngressIntfList", "specialEgressIntfList"}) {
    for (const U8 kind : {U8{9}, U8{0}, U8{5}}) {
      requested(lists, attribute, OpCode::write, {kind}, make("LoamCounters::IntfList"));
    }
    const U32 number = lists->typeData()->type().numberOf(attribute).value();
    std::vector<U32> kinds;
    for (const auto at = Vane::genericIfCursor(*lists, number); at->valid(); at->advance()) {
      kinds.push_back(at->key().as<U8>());
      requested(lists, attribute, OpCode::del, {at->key()});
      EXPECT_NE(at->item().as<Mote::Ptr<Mote::Node>>(), nullptr) << "the entry, also when it has gone";
    }
    EXPECT_THAT(kinds, ElementsAre(0, 5, 9)) << attribute;
  }

  const auto containers = make("LoamCounters::InterfaceTcContainer");
  const auto list = make("LoamCounters::IntfList");
  for (const Nexo::IntfId intf : {Nexo::IntfId("b"), Nexo::IntfId("a"), Nexo::IntfId("c")}) {
    const Value made = requested(containers, "tcPerIntf", OpCode::write, {intf});
    EXPECT_EQ(made.as<TcContainer::Ptr>()->intfId(), intf);
    requested(list, "intf", OpCode::enqueue, {}, intf);
  }
  std::set<std::string> names;
  for (const auto at = Vane::genericIfCursor(*containers, 130); at->valid(); at->advance()) {
    const auto intf = at->key().as<Nexo::IntfId>();
    names.insert(intf.stringValue().c_str());
    if (intf == Nexo::IntfId("a")) {
      at->del();
    } else {
      requested(containers, "tcPerIntf", OpCode::del, {intf});
    }
    EXPECT_EQ(at->item().as<TcContainer::PtrConst>()->intfId(), intf) << "the entry, also when it has gone";
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
  EXPECT_EQ(Vane::genericIfCursor(*list, 130), nullptr);
  EXPECT_THROW(at->del(), Vane::InternalException);
}

TEST(IntfLists, LookUpsOfWhatIsNotThereAreNeutral) {
  const auto lists = allIntfListFactory();
  using Kind = SpecialIngressIntfOrdering;
  for (const Kind kind : {Kind::ingressIntfIpsec, Kind::ingressIntfOlp, Kind::ingressIntfPlr}) {
    lists->specialIngressIntfListIs(kind, intfListFactory());
  }
  EXPECT_EQ(lists->specialIngressIntfLists().begin()->key, Kind::ingressIntfOlp);
  lists->specialIngressIntfListIs(Kind::ingressIntfPlr, nullptr);
  lists->specialIngressIntfListIs(Kind::ingressIntfErp, nullptr);
  EXPECT_EQ(lists->specialIngressIntfLists().size(), 2U);
  EXPECT_EQ(lists->specialIngressIntfListDel(Kind::ingressIntfErp), nullptr);
  const auto counters = tcContainerFactory(Nexo::IntfId("e"));
  EXPECT_EQ(counters->tc(3), IngressCounter());
  counters->tcIs(3, {{5, 6, 7, 8}});
  const TcContainer::PtrConst reader = counters;
  EXPECT_EQ(reader->tc(3).droppedPackets, 7U);
  const InterfaceTcContainer::PtrConst containers = interfaceTcContainerFactory();
  EXPECT_EQ(containers->tcPerIntf(Nexo::IntfId("e")), nullptr);
  const OrderedSystemPhyPortId::PtrConst ports = orderedSystemPhyPortIdFactory();
  EXPECT_FALSE(ports->systemPhyPortId(Hardware::Loam::nullPort));
  EXPECT_EQ(counters->tcDel(3), (IngressCounter{{5, 6, 7, 8}}));
  counters->tcIs(3, {{5, 6, 7, 8}});
  counters->tcDelAll();
  EXPECT_EQ(reader->tc(3), IngressCounter());
  EXPECT_EQ(intfListFactory()->intfDeq(), Nexo::IntfId());
  const auto list = intfListFactory();
  list->intfEnq(Nexo::IntfId("e"));
  list->intfDelAll();
  EXPECT_EQ(list->intfDeq(), Nexo::IntfId());
  lists->specialEgressIntfListIs(SpecialEgressIntfOrdering{}, list);
  lists->specialEgressIntfListDelAll();
  EXPECT_EQ(lists->specialEgressIntfLists().size(), 0U);

  const auto mapping = fapDescriptorMappingFactory();
  const auto descriptor = Mote::make<FapDescriptor>();
  mapping->fapDescriptorIs("F", nullptr);
  mapping->fapDescriptorIs("F", descriptor);
  mapping->fapDescriptorIs("F", Mote::make<FapDescriptor>());
  EXPECT_EQ(descriptor->users(), 1U) << "replaced, and so released";
  mapping->fapDescriptorIs("F", nullptr);
  EXPECT_EQ(mapping->fapDescriptorDel("F"), nullptr);
}

// The test of the registry's listing compares the names.
template <class Kind>
void expectNamesAndNumbers(Kind (*ofNumber)(U32), Kind (*ofName)(const Mote::String&), const char* foreign) {
  const Vane::TypeDescriptor& type = *Vane::findType(Vane::typeName<Kind>);
  ASSERT_EQ(type.values.size(), 11U);
  for (U32 number = 0; number < type.values.size(); ++number) {
    const std::string name(type.values[number]);
    const Kind kind = ofNumber(number);
    EXPECT_EQ(static_cast<U32>(kind), number);
    EXPECT_EQ(stringValue(kind), name);
    EXPECT_EQ(ofName(name), kind);
    EXPECT_EQ((std::ostringstream() << kind).str(), name);
    Kind parsed{};
    const std::string text = name + "...";
    EXPECT_TRUE(sequenceToValue(text.data(), text.data() + name.size(), parsed));
    EXPECT_EQ(parsed, kind);
    EXPECT_FALSE(sequenceToValue(text.data(), text.data() + name.size() + 1, parsed));
  }
  using testing::ThrowsMessage;
  const std::string full(type.name);
  const auto outOfRange = ThrowsMessage<Vane::RangeException>(full + "::value < " + full + "::min or > " +
                                                              full + "::max not allowed");
  EXPECT_THAT([&] { ofNumber(11); }, outOfRange);
  EXPECT_THAT([] { stringValue(static_cast<Kind>(11)); }, outOfRange);
  EXPECT_THAT([&] { ofName(foreign); },
              ThrowsMessage<Vane::RangeException>(full + " has no value " + foreign));
}

TEST(IntfLists, KindsHaveNamesAndNumbers) {
  expectNamesAndNumbers<SpecialIngressIntfOrdering>(SpecialIngressIntfOrderingInstance,
                                                    SpecialIngressIntfOrderingInstance, "egressIntfErp");
  expectNamesAndNumbers<SpecialEgressIntfOrdering>(SpecialEgressIntfOrderingInstance,
                                                   SpecialEgressIntfOrderingInstance, "ingressIntfErp");
}

}  // namespace

}  // namespace loamtest
