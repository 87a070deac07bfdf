// Requests of the generic attribute interface: any object, attribute number, op code and arguments. What does
// not fit is a status or an exception.

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

/// Values of every type that crosses the interface, among them what earlier requests have answered.
class Values {
 public:
  Values()
      : values_{true,
                U8{1},
                U32{1},
                U32{2},
                Mote::String("Fap0"),
                Nexo::IntfId("Ethernet1"),
                Vane::Optional<Mote::String>(),
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
                Brim::Counters::ShmemManager::PtrConst()} {}

  const Value& any(loamfuzz::Input& input) const { return values_[input.number(values_.size())]; }
  std::vector<Value> some(loamfuzz::Input& input, const Vane::Parameters& fitting) const {
    std::vector<Value> values;
    if (input.number(8) == 0) {
      for (U64 count = input.number(9); count > 0; --count) values.push_back(any(input));
      return values;
    }
    for (const Vane::Parameter& parameter : fitting.all()) {
      if (parameter.name == "fd") {
        values.emplace_back(U32{STDOUT_FILENO});
        continue;
      }
      // The next of the declared type, or what comes.
      const std::size_t first = input.number(values_.size());
      std::size_t at = first;
      for (std::size_t i = 0; i < values_.size() && values_[at].type() != parameter.type; ++i) {
        at = (at + 1) % values_.size();
      }
      values.push_back(values_[at]);
    }
    return values;
  }
  void add(const Value& value) { values_.push_back(value); }

 private:
  std::vector<Value> values_;
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const int silenced = ::dup2(::open("/dev/null", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);
  loamfuzz::require(silenced == STDOUT_FILENO);
  loamfuzz::Input input(data, size);
  Values values;
  std::vector<Mote::Ptr<Mote::Node>> objects;
  const auto types = [] {
    std::vector<const Vane::TypeDescriptor*> all;
    for (const Vane::ModuleDescriptor* module : Vane::modules()) {
      for (const Vane::TypeDescriptor& type : module->types) {
        if (!type.isEnumeration()) all.push_back(&type);
      }
    }
    return all;
  }();
  while (!input.atEnd()) {
    try {
      if (objects.empty() || input.number(4) == 0) {
        const Vane::TypeDescriptor& type = *types[input.number(types.size())];
        objects.push_back(type.instance(values.some(input, type.constructor)));
        values.add(objects.back());
        continue;
      }
      const Mote::Ptr<Mote::Node> object = objects[input.number(objects.size())];
      const Vane::TypeDescriptor& type = object->typeData()->type();
      const U32 number = type.firstNumber + static_cast<U32>(input.number(20)) - 1;
      const Vane::AttributeDescriptor* attribute = type.attribute(number);
      const auto arguments =
          values.some(input, attribute == nullptr ? Vane::Parameters() : attribute->parameters);
      Value result;
      const auto status = Vane::genericIfAttributeOp(
          *object, result, number, static_cast<U8>(input.number(13)), arguments, values.any(input));
      loamfuzz::require(attribute != nullptr || status == Vane::OpStatus::unknownAttribute);
      // A number might be taken for a format; an unknown one is a fatal assertion.
      if (!result.empty() && result.type() != "U32") values.add(result);
    } catch (const std::exception& error) {
      loamfuzz::require(*error.what() != '\0');
    }
  }
  return 0;
}
