#include <gmock/gmock.h>

#include "LoamCounters/DebugCountersPrinter/DescriptorMappings.h"
#include "LoamCounters/QueueCountersPrinter/CountersPrinter.h"
#include "LoamCounters/QueueCountersPrinter/IntfLists.h"
#include "loamshow/Plugin.h"
#include "loamshow/RegistryReport.h"
#include "tests/Support.h"

namespace loamtest {

namespace {

using namespace LoamCounters;
using testing::ElementsAre;
using Vane::OpCode;
using Vane::OpStatus;
using Vane::Value;

std::vector<Value> printerArguments(bool skeinMountMode) {
  return {Hardware::Loam::Status::PtrConst(Mote::make<Hardware::Loam::Status>()),
          LoamTm::TmMapping::PtrConst(Mote::make<LoamTm::TmMapping>()),
          Hardware::Loam::InternalLagClientStatus::PtrConst(),
          TrafficClassMapping::PtrConst(),
          Hardware::Loam::CounterEngineStatus::PtrConst(),
          Mote::make<Cortex::EntityManager>(),
          skeinMountMode};
}

Mote::Ptr<Mote::Node> make(std::string_view type, const std::vector<Value>& arguments = {}) {
  return Vane::findType(type)->instance(arguments);
}

// The numbers, names, types and flags that callers rely on.
TEST(Registry, HoldsWhatCallersRelyOn) {
  const Json registry = Json::parse(loamshow::registryJson());
  std::map<std::string, Json> modules;
  for (const Json& module : registry["modules"]) modules[module["unit"]] = module;
  ASSERT_EQ(modules.size(), 2U);
  EXPECT_EQ(modules["LoamCounters/QueueCountersPrinter"]["symbol"],
            "_QueueCountersPrinter_824cd50bdcbaefe2_vaneModule");
  EXPECT_EQ(modules["LoamCounters/DebugCountersPrinter"]["symbol"],
            "_DebugCountersPrinter_7b5872ac678f736f_vaneModule");

  std::vector<std::string> attributes;
  for (const auto& [unit, module] : modules) {
    for (const Json& type : module["types"]) {
      const auto name = type["name"].get<std::string>().substr(14);
      attributes.push_back(std::to_string(type["index"].get<int>()) + " " + name);
      for (const Json& attribute : type.value("attributes", Json::array())) {
        std::string flags;
        for (const Json& flag : attribute["flags"]) flags += " " + flag.get<std::string>();
        std::string parameters;
        for (const Json& parameter : attribute.value("parameters", Json::array())) {
          parameters +=
              " " + parameter["name"].get<std::string>() + ":" + parameter["type"].get<std::string>();
        }
        attributes.push_back(std::to_string(attribute["number"].get<int>()) + " " +
                             attribute["name"].get<std::string>() + " " +
                             attribute["type"].get<std::string>() + flags + parameters);
      }
    }
  }
  const std::string sources =
      " loamStatus:Hardware::Loam::Status::PtrConst tmMapping:LoamTm::TmMapping::PtrConst"
      " internalLagStatus:Hardware::Loam::InternalLagClientStatus::PtrConst"
      " trafficClassMapping:LoamCounters::TrafficClassMapping::PtrConst";
  const std::string intfList = " fd:U32 fmt:U32 intfList:LoamCounters::IntfList::PtrConst";
  EXPECT_THAT(
      attributes,
      ElementsAre(
          "0 FapDescriptorMapping",
          "130 fapDescriptor LoamCounters::FapDescriptor::PtrConst pointer writable collection",
          "1 ShmemMgrMapping",
          "130 shmemMgr Brim::Counters::ShmemManager::PtrConst pointer writable collection",
          "2 DebugCountersPrinter",
          "130 printDebugCounter bool operation const fd:U32 fmt:U32"
          " descriptor:Brim::Counters::CounterDescriptor::PtrConst snapshot:Mote::String"
          " shmemMgr:Brim::Counters::ShmemManager::PtrConst drops:bool printSectionName:bool "
          "blockName:Mote::String"
          " instance:U32 extraDescription:Mote::String",
          "131 printFapName void operation const fd:U32 fmt:U32 fapName:Mote::String",
          "132 printDebugCountersHeader void operation const fd:U32 fmt:U32",
          "133 printDebugCountersPerAFap void operation const "
          "shmemMgrs:LoamCounters::ShmemMgrMapping::PtrConst"
          " fapDescriptors:LoamCounters::FapDescriptorMapping::PtrConst fd:U32 fmt:U32 snapshot:Mote::String "
          "drops:bool"
          " blockName:Vane::Optional<Mote::String>",
          "0 SpecialIngressIntfOrdering", "1 SpecialEgressIntfOrdering", "2 OrderedSystemPhyPortId",
          "130 systemPhyPortId bool value writable collection", "3 IntfList",
          "131 intf Nexo::IntfId value writable queue", "4 AllIntfList",
          "130 intfList LoamCounters::IntfList::Ptr pointer writable",
          "131 specialIngressIntfList LoamCounters::IntfList::Ptr pointer writable collection",
          "132 specialEgressIntfList LoamCounters::IntfList::Ptr pointer writable collection",
          "5 TcContainer", "130 intfId Nexo::IntfId value readOnly",
          "131 tc LoamCounters::IngressCounter value writable collection", "6 InterfaceTcContainer",
          "130 tcPerIntf LoamCounters::TcContainer::Ptr pointer readOnly collection instantiating "
          "intfId:Nexo::IntfId",
          "7 CountersPrinter", "130 loamStatus Hardware::Loam::Status::PtrConst pointer readOnly",
          "131 tmMapping LoamTm::TmMapping::PtrConst pointer readOnly",
          "132 internalLagStatus Hardware::Loam::InternalLagClientStatus::PtrConst pointer readOnly",
          "133 trafficClassMapping LoamCounters::TrafficClassMapping::PtrConst pointer readOnly",
          "134 counterEngineStatus Hardware::Loam::CounterEngineStatus::PtrConst pointer readOnly",
          "135 entityManager Cortex::EntityManager::Ptr pointer readOnly",
          "136 skeinMountMode bool value readOnly",
          "137 fapCounterAccessor LoamCounters::CounterEngineAccessor::Ptr pointer readOnly instantiating" +
              sources + " entityManager:Cortex::EntityManager::Ptr skeinMountMode:bool",
          "138 egressAclCountersAccessor LoamCounters::EgressAclCountersAccessor::Ptr pointer readOnly "
          "instantiating"
          " loamStatus:Hardware::Loam::Status::PtrConst"
          " counterEngineStatus:Hardware::Loam::CounterEngineStatus::PtrConst"
          " entityManager:Cortex::EntityManager::Ptr isMountModeWriter:bool",
          "139 showInterfacesQueueCounters void operation const" + intfList + " internal:bool detail:bool",
          "140 showInterfacesQueueIngressCounters void operation const" + intfList +
              " internal:bool detail:bool",
          "141 showCpuQueueCounters void operation const fd:U32 fmt:U32 summary:bool "
          "perInputPortCoppVoqsSupported:bool",
          "142 showInterfacesQueueDropsCounters void operation const" + intfList,
          "143 showInterfacesEgressAclDropCounters void operation" + intfList,
          "144 showInterfacesEgressMtuCounters void operation fd:U32 fmt:U32"));

  const Json& orderings = modules["LoamCounters/QueueCountersPrinter"]["types"];
  const auto names = [](const Json& items) {
    std::string joined;
    for (const Json& item : items) joined += item["name"].get<std::string>() + " ";
    return joined;
  };
  EXPECT_EQ(orderings[0]["values"][5], Json({{"value", 5}, {"name", "ingressIntfPlr"}}));
  EXPECT_EQ(names(orderings[0]["values"]),
            "ingressIntfOlp ingressIntfErp ingressIntfL3Flood ingressIntfRoutingRecirc "
            "ingressIntfSharedRecirc ingressIntfPlr "
            "ingressIntfCpuRecirc ingressIntfFabricMeshSwitch ingressIntfSflowAccel ingressIntfIpsec "
            "ingressIntfEventor ");
  EXPECT_EQ(
      names(orderings[1]["values"]),
      "egressIntfOlp egressIntfErp egressIntfL3Flood egressIntfRoutingRecirc egressIntfSharedRecirc "
      "egressIntfPlr "
      "egressIntfCpuRecirc egressIntfFabricMeshDrop egressIntfSflowAccel egressIntfIpsec egressIntfEventor ");
  EXPECT_EQ(names(orderings[7]["constructor"]),
            "loamStatus tmMapping internalLagStatus trafficClassMapping counterEngineStatus entityManager "
            "skeinMountMode ");
  EXPECT_EQ(orderings[5]["constructor"], Json({{{"name", "intfId"}, {"type", "Nexo::IntfId"}}}));
  EXPECT_EQ(orderings[3].contains("constructor"), false);
}

// Per kind of attribute, the op codes that it takes, with well-formed arguments.
TEST(Registry, AnswersAStatusForEveryOpCode) {
  const auto list = make("LoamCounters::IntfList");
  const auto lists = make("LoamCounters::AllIntfList");
  const auto containers = make("LoamCounters::InterfaceTcContainer");
  const auto printer = make("LoamCounters::CountersPrinter", printerArguments(true));
  const std::vector<Value> sources = printerArguments(true);
  const MemoryFile file;
  struct Case {
    Mote::Ptr<Mote::Node> object;
    U32 number;
    std::vector<Value> arguments;
    Value value;
    std::set<int> taken;
  };
  const Nexo::IntfId intf("Ethernet1");
  const Case cases[] = {
      {list, 131, {}, intf, {3, 6, 7, 8, 9}},
      {list, 131, {U32{1}}, intf, {3, 6, 7, 8}},  // a dequeue takes no arguments
      {lists, 130, {}, list, {0, 1}},
      {lists, 131, {U8{3}}, list, {0, 1, 2, 3, 4, 5}},
      {containers, 130, {intf}, {}, {0, 1, 2, 3, 4, 5}},
      {printer, 136, {}, false, {0}},
      {printer, 137, {sources[0], sources[1], sources[2], sources[3], sources[5], true}, {}, {0, 1, 2}},
      {printer, 138, {sources[0], sources[4], sources[5], false}, {}, {0, 1, 2}},
      {printer, 144, {file.fdNumber(), U32{1}}, {}, {10}},
  };
  for (const Case& c : cases) {
    for (const int op : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 255}) {
      Value result;
      EXPECT_EQ(
          Vane::genericIfAttributeOp(*c.object, result, c.number, static_cast<U8>(op), c.arguments, c.value),
          c.taken.contains(op) ? OpStatus::done : OpStatus::opNotValid)
          << c.object->typeData()->type().name << " " << c.number << " op " << op;
    }
  }
  Value result;
  for (const U32 number : {0U, 129U, 145U, ~0U}) {
    EXPECT_EQ(Vane::genericIfAttributeOp(*printer, result, number, 0, {}), OpStatus::unknownAttribute);
  }
  EXPECT_EQ(Vane::genericIfAttributeOp(*list, result, 130, 0, {}), OpStatus::unknownAttribute);
}

TEST(Registry, AccessorsAreTheSameForTheSameArguments) {
  const std::vector<Value> arguments = printerArguments(false);
  const auto printer = make("LoamCounters::CountersPrinter", arguments);
  using Accessor = CounterEngineAccessor::Ptr;
  Value result;
  request(*printer, "fapCounterAccessor", OpCode::read, {}, result);
  const Accessor held = result.as<Accessor>();
  ASSERT_NE(held, nullptr);
  request(*printer, "egressAclCountersAccessor", OpCode::read, {}, result);
  const auto heldAcl = result.as<Mote::Ptr<const Mote::Node>>();

  // Each argument replaced by another one of its type makes another accessor.
  const std::vector<Value> others = {Mote::make<Hardware::Loam::Status>(),
                                     Mote::make<LoamTm::TmMapping>(),
                                     Mote::make<Hardware::Loam::InternalLagClientStatus>(),
                                     Mote::make<TrafficClassMapping>(),
                                     Mote::make<Hardware::Loam::CounterEngineStatus>(),
                                     Mote::make<Cortex::EntityManager>(),
                                     true};
  const auto expectIdentity = [&](const char* attribute, Mote::Ptr<const Mote::Node> last,
                                  std::initializer_list<std::size_t> taken) {
    std::vector<Value> sources;
    for (const std::size_t i : taken) sources.push_back(arguments[i]);
    const auto instantiate = [&] {
      request(*printer, attribute, OpCode::write, sources, result);
      return result.as<Mote::Ptr<const Mote::Node>>();
    };
    EXPECT_EQ(instantiate(), last) << attribute;
    for (std::size_t i = 0; i < sources.size(); ++i) {
      sources[i] = others[taken.begin()[i]];
      const auto other = instantiate();
      EXPECT_NE(other, last) << attribute << " argument " << i;
      EXPECT_EQ(instantiate(), other);
      last = other;
    }
  };
  expectIdentity("fapCounterAccessor", held, {0, 1, 2, 3, 5, 6});
  expectIdentity("egressAclCountersAccessor", heldAcl, {0, 4, 5, 6});
  request(*printer, "fapCounterAccessor", OpCode::read, {}, result);
  const Accessor last = result.as<Accessor>();
  request(*printer, "fapCounterAccessor", OpCode::del, {}, result);
  EXPECT_EQ(result.as<Accessor>(), last);
  request(*printer, "fapCounterAccessor", OpCode::read, {}, result);
  EXPECT_EQ(result.as<Accessor>(), nullptr);
  request(*printer, "skeinMountMode", OpCode::read, {}, result);
  EXPECT_FALSE(result.as<bool>());
}

TEST(Registry, MistypedArgumentsAreExceptions) {
  const auto printer = make("LoamCounters::CountersPrinter", printerArguments(false));
  const auto list = make("LoamCounters::IntfList");
  Value result;
  const auto raised = [&](Mote::Node& object, const char* attribute, OpCode op, std::vector<Value> arguments,
                          Value value = {}) {
    try {
      request(object, attribute, op, arguments, result, value);
    } catch (const Vane::InternalException& error) {
      return std::string(error.what());
    }
    return std::string();
  };
  EXPECT_EQ(raised(*printer, "showInterfacesEgressMtuCounters", OpCode::call, {U32{1}}),
            "showInterfacesEgressMtuCounters: expected 2 arguments, got 1");
  EXPECT_EQ(raised(*printer, "showInterfacesQueueDropsCounters", OpCode::call, {U32{1}, U32{1}, printer}),
            "showInterfacesQueueDropsCounters: argument 3: expected LoamCounters::IntfList::PtrConst, got "
            "Mote::Node::Ptr");
  EXPECT_EQ(raised(*printer, "showCpuQueueCounters", OpCode::call, {true, U32{1}, true, true}),
            "showCpuQueueCounters: argument 1: expected U32, got bool");
  EXPECT_EQ(raised(*list, "intf", OpCode::enqueue, {}, U32{7}), "expected Nexo::IntfId, got U32");
  EXPECT_EQ(raised(*list, "intf", OpCode::enqueue, {}), "expected Nexo::IntfId, got nothing");
  const auto lists = make("LoamCounters::AllIntfList");
  EXPECT_EQ(raised(*lists, "intfList", OpCode::write, {}, IntfList::PtrConst(intfListFactory())),
            "expected LoamCounters::IntfList::Ptr, got LoamCounters::IntfList::PtrConst");
  EXPECT_THROW(request(*lists, "specialIngressIntfList", OpCode::read, {U8{11}}, result),
               Vane::RangeException);
  EXPECT_EQ(raised(*lists, "specialIngressIntfList", OpCode::read, {SpecialEgressIntfOrdering{}}),
            "specialIngressIntfList: argument 1: expected LoamCounters::SpecialIngressIntfOrdering, got "
            "LoamCounters::SpecialEgressIntfOrdering");
  EXPECT_THROW(make("LoamCounters::TcContainer", {U32{1}}), Vane::InternalException);
}

TEST(Registry, CursorsWalkEveryCollection) {
  const auto ports = make("LoamCounters::OrderedSystemPhyPortId");
  const auto containers = make("LoamCounters::InterfaceTcContainer");
  const auto list = make("LoamCounters::IntfList");
  Value result;
  using Port = Hardware::Loam::SystemPhyPortId;
  for (const U64 port : {300, 12, 300, 40}) {
    request(*ports, "systemPhyPortId", OpCode::write, {Port(port)}, result, true);
  }
  for (const char* name : {"b", "a", "c"}) {
    request(*containers, "tcPerIntf", OpCode::write, {Nexo::IntfId(name)}, result);
    EXPECT_EQ(result.as<TcContainer::Ptr>()->intfId(), Nexo::IntfId(name));
    request(*list, "intf", OpCode::enqueue, {}, result, Nexo::IntfId(name));
  }
  std::vector<U64> keys;
  for (const auto at = Vane::genericIfCursor(*ports, 130); at->valid(); at->advance()) {
    keys.push_back(at->key().as<Port>().value());
    EXPECT_TRUE(at->item().as<bool>());
    if (keys.back() == 40) at->del();
  }
  EXPECT_THAT(keys, ElementsAre(12, 40, 300));
  request(*ports, "systemPhyPortId", OpCode::count, {}, result);
  EXPECT_EQ(result.as<U32>(), 2U);

  std::set<std::string> names;
  for (const auto at = Vane::genericIfCursor(*containers, 130); at->valid(); at->advance()) {
    names.insert(at->key().as<Nexo::IntfId>().stringValue().c_str());
    at->del();
  }
  EXPECT_THAT(names, ElementsAre("a", "b", "c"));
  const auto answered = [&](OpCode op) {
    request(*list, "intf", op, {}, result);
    return result.as<Nexo::IntfId>();
  };
  EXPECT_EQ(answered(OpCode::front), Nexo::IntfId("b"));
  EXPECT_EQ(answered(OpCode::back), Nexo::IntfId("c"));
  std::string queued;
  const auto at = Vane::genericIfCursor(*list, 131);
  for (; at->valid(); at->advance()) {
    queued += at->item().as<Nexo::IntfId>().stringValue();
    request(*list, "intf", OpCode::dequeue, {}, result);
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
  std::vector<std::string_view> kinds;
  for (const auto& [kind, list] : lists->specialIngressIntfLists()) kinds.push_back(Vane::enumName(kind));
  EXPECT_THAT(kinds, ElementsAre("ingressIntfOlp", "ingressIntfPlr", "ingressIntfIpsec"));
  lists->specialIngressIntfListIs(Kind::ingressIntfPlr, nullptr);
  lists->specialIngressIntfListIs(Kind::ingressIntfErp, nullptr);
  EXPECT_EQ(lists->specialIngressIntfLists().size(), 2U);
  EXPECT_EQ(lists->specialIngressIntfListDel(Kind::ingressIntfErp), nullptr);

  const auto counters = tcContainerFactory(Nexo::IntfId("e"));
  EXPECT_EQ(counters->tc(3), IngressCounter());
  EXPECT_EQ(counters->tcs().size(), 0U);
  counters->tcIs(3, {{1, 2, 3, 4}});
  counters->tcIs(3, {{5, 6, 7, 8}});
  EXPECT_EQ(counters->tcDel(3), (IngressCounter{{5, 6, 7, 8}}));
  EXPECT_EQ(intfListFactory()->intfDeq(), Nexo::IntfId());

  Kind parsed{};
  const std::string_view text = "ingressIntfEventor...";
  EXPECT_TRUE(sequenceToValue(text.data(), text.data() + 18, parsed));
  EXPECT_EQ(parsed, SpecialIngressIntfOrderingInstance(10));
  EXPECT_FALSE(sequenceToValue(text.data(), text.data() + 19, parsed));
  EXPECT_EQ(stringValue(SpecialEgressIntfOrderingInstance("egressIntfErp")), "egressIntfErp");
  EXPECT_THROW(SpecialEgressIntfOrderingInstance(11), Vane::RangeException);
  EXPECT_THROW(SpecialIngressIntfOrderingInstance("egressIntfErp"), Vane::RangeException);

  const auto mapping = fapDescriptorMappingFactory();
  const auto descriptor = Mote::make<FapDescriptor>();
  mapping->fapDescriptorIs("F", nullptr);
  mapping->fapDescriptorIs("F", descriptor);
  mapping->fapDescriptorIs("F", Mote::make<FapDescriptor>());
  EXPECT_EQ(descriptor->users(), 1U) << "replaced, and so released";
  mapping->fapDescriptorIs("F", nullptr);
  EXPECT_EQ(mapping->fapDescriptorDel("F"), nullptr);
}

}  // namespace

}  // namespace loamtest
