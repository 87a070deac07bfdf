// Requests of the generic attribute interface: any object, attribute number, op code and arguments. Invalid
// requests must return a status or throw.

#include <fcntl.h>
#include <unistd.h>

#include <vector>

#include "fuzz/Fuzz.h"
#include "platform/BrimCounters.h"
#include "platform/CounterAgent.h"
#include "platform/HardwareLoam.h"
#include "platform/LoamTm.h"
#include "platform/Vane.h"

namespace {

using Vane::Value;

using Values = std::vector<Value>;

/// A value of every type that the interface passes.
Values everyValue() {
  static const Vane::Optional<Mote::String> noText;
  return {true,
          U8{1},
          U32{1},
          U32{2},
          Mote::String("Fap0"),
          Nexo::IntfId("Ethernet1"),
          noText,
          Hardware::Loam::SystemPhyPortId(64),
          Hardware::Loam::FapId(3),
          Value(),
          Mote::make<Hardware::Loam::Status>(),
          Mote::make<LoamTm::TmMapping>(),
          Mote::make<Hardware::Loam::InternalLagClientStatus>(),
          Mote::make<Cortex::EntityManager>(),
          LoamCounters::TrafficClassMapping::PtrConst(),
          Hardware::Loam::CounterEngineStatus::PtrConst(),
          Mote::make<LoamCounters::FapDescriptor>(),
          Mote::make<Brim::Counters::CounterDescriptor>(),
          Brim::Counters::ShmemManager::PtrConst()};
}

/// Mostly valid arguments, each the next value of its parameter's type from a random position on; otherwise
/// any values.
Values chosen(loamfuzz::Input& input, const Values& from, const Vane::Parameters& fitting) {
  Values values;
  if (input.number(8) == 0) {
    for (U64 count = input.number(9); count > 0; --count) values.push_back(from[input.number(from.size())]);
    return values;
  }
  for (const Vane::Parameter& parameter : fitting.all()) {
    std::size_t at = input.number(from.size());
    for (std::size_t i = 0; i < from.size() && from[at].type() != parameter.type; ++i) {
      at = (at + 1) % from.size();
    }
    values.push_back(parameter.name == "fd" ? Value(U32{STDOUT_FILENO}) : from[at]);
  }
  return values;
}

/// The types of all modules that have instances.
std::vector<const Vane::TypeDescriptor*> entities() {
  std::vector<const Vane::TypeDescriptor*> types;
  for (const Vane::ModuleDescriptor* module : Vane::modules()) {
    for (const Vane::TypeDescriptor& type : module->types) {
      if (!type.isEnumeration()) types.push_back(&type);
    }
  }
  return types;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const int silenced = ::dup2(::open("/dev/null", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);
  loamfuzz::require(silenced == STDOUT_FILENO);
  static const auto types = entities();
  loamfuzz::Input input(data, size);
  Values values = everyValue();  // later also results of requests
  std::vector<Mote::Ptr<Mote::Node>> objects;
  while (!input.atEnd()) {
    try {
      if (objects.empty() || input.number(4) == 0) {
        const Vane::TypeDescriptor& type = *types[input.number(types.size())];
        objects.push_back(type.instance(chosen(input, values, type.constructor)));
        values.emplace_back(objects.back());
        continue;
      }
      Mote::Node& object = *objects[input.number(objects.size())];
      const Vane::TypeDescriptor& type = object.typeData()->type();
      const U32 number = type.firstNumber + static_cast<U32>(input.number(20)) - 1;
      const Vane::AttributeDescriptor* attribute = type.attribute(number);
      const Values arguments = chosen(input, values, attribute ? attribute->parameters : Vane::Parameters());
      const U8 op = static_cast<U8>(input.number(13));
      Value result;
      const auto status = Vane::genericIfAttributeOp(object, result, number, op, arguments,
                                                     values[input.number(values.size())]);
      loamfuzz::require(attribute != nullptr || status == Vane::OpStatus::unknownAttribute);
      // Not numbers, which might be used as a format: an unknown format is a fatal assertion.
      if (!result.empty() && result.type() != "U32") values.push_back(result);
    } catch (const std::exception& error) {
      loamfuzz::require(*error.what() != '\0');
    }
  }
  return 0;
}
