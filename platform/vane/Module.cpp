#include "platform/vane/Module.h"

#include <algorithm>
#include <string>
#include <vector>

namespace Vane {

namespace {

std::vector<const ModuleDescriptor*>& registry() {
  static std::vector<const ModuleDescriptor*> modules;
  return modules;
}

}  // namespace

void Arguments::throwCount(std::size_t expected) const {
  throw InternalException(Mote::String(owner_) + ": expected " + std::to_string(expected) +
                          " arguments, got " + std::to_string(given_.size()));
}

void Arguments::throwMismatch(std::size_t index, const InternalException& mismatch) const {
  throw InternalException(Mote::String(owner_) + ": argument " + std::to_string(index + 1) + ": " +
                          mismatch.what());
}

Mote::Ptr<Mote::Node> TypeDescriptor::instance(std::span<const Value> arguments) const {
  if (isEnumeration()) throw InternalException(Mote::String(name) + ": an enumeration has no objects");
  return construct(Arguments(name, arguments));
}

const AttributeDescriptor* TypeDescriptor::attribute(U32 number) const {
  if (number < firstNumber || number - firstNumber >= attributes.size()) return nullptr;
  return &attributes[number - firstNumber];
}

Optional<U32> TypeDescriptor::numberOf(std::string_view attributeName) const {
  const auto found = std::find_if(attributes.begin(), attributes.end(),
                                  [&](const auto& attribute) { return attribute.name == attributeName; });
  if (found == attributes.end()) return {};
  return firstNumber + static_cast<U32>(found - attributes.begin());
}

void vaneModuleIs(const ModuleDescriptor& descriptor) {
  registry().push_back(&descriptor);
}

void vaneModuleDel(const ModuleDescriptor& descriptor) {
  std::erase(registry(), &descriptor);
}

std::span<const ModuleDescriptor* const> modules() {
  return registry();
}

const TypeDescriptor* findType(std::string_view name) {
  for (const ModuleDescriptor* module : registry()) {
    for (const TypeDescriptor& type : module->types) {
      if (type.name == name) return &type;
    }
  }
  return nullptr;
}

namespace {

const AttributeDescriptor* attributeOf(const Mote::Node& object, U32 attribute) {
  const TypeData* typeData = object.typeData();
  return typeData == nullptr ? nullptr : typeData->type().attribute(attribute);
}

}  // namespace

OpStatus genericIfAttributeOp(Mote::Node& object, Value& result, U32 attribute, U8 op,
                              std::span<const Value> arguments, const Value& value) {
  const AttributeDescriptor* descriptor = attributeOf(object, attribute);
  if (descriptor == nullptr) return OpStatus::unknownAttribute;
  return descriptor->op(object,
                        {static_cast<OpCode>(op), Arguments(descriptor->name, arguments), value, result});
}

std::unique_ptr<Cursor> genericIfCursor(Mote::Node& object, U32 attribute) {
  const AttributeDescriptor* descriptor = attributeOf(object, attribute);
  return descriptor == nullptr || descriptor->cursor == nullptr ? nullptr : descriptor->cursor(object);
}

}  // namespace Vane
