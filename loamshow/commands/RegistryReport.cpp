#include "loamshow/commands/RegistryReport.h"

#include <nlohmann/json.hpp>
#include <sstream>
#include <utility>
#include <vector>

#include "platform/Vane.h"

namespace loamshow {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::pair<U16, const char*> flagNames[] = {
    {Vane::flagValue, "value"},
    {Vane::flagPointer, "pointer"},
    {Vane::flagReadOnly, "readOnly"},
    {Vane::flagWritable, "writable"},
    {Vane::flagCollection, "collection"},
    {Vane::flagQueue, "queue"},
    {Vane::flagInstantiating, "instantiating"},
    {Vane::flagOperation, "operation"},
    {Vane::flagConst, "const"},
};

std::vector<std::string> namesOf(U16 flags) {
  std::vector<std::string> names;
  for (const auto& [flag, name] : flagNames) {
    if ((flags & flag) != 0) names.emplace_back(name);
  }
  return names;
}

bool takesArguments(const Vane::AttributeDescriptor& attribute) {
  return (attribute.flags & (Vane::flagOperation | Vane::flagInstantiating)) != 0;
}

Json parameters(const Vane::Parameters& parameters) {
  Json list = Json::array();
  for (const Vane::Parameter& parameter : parameters.all()) {
    list.push_back({{"name", parameter.name}, {"type", parameter.type}});
  }
  return list;
}

Json typeJson(const Vane::TypeDescriptor& type, std::size_t index) {
  Json json{{"name", type.name}, {"index", index}, {"kind", type.isEnumeration() ? "enumeration" : "entity"}};
  if (type.isEnumeration()) {
    for (std::size_t value = 0; value < type.values.size(); ++value) {
      json["values"].push_back({{"value", value}, {"name", type.values[value]}});
    }
    return json;
  }
  if (type.constructor.count > 0) json["constructor"] = parameters(type.constructor);
  json["attributes"] = Json::array();
  U32 number = type.firstNumber;
  for (const Vane::AttributeDescriptor& attribute : type.attributes) {
    Json entry{{"number", number++},
               {"name", attribute.name},
               {"type", attribute.type},
               {"flags", namesOf(attribute.flags)}};
    if (takesArguments(attribute)) entry["parameters"] = parameters(attribute.parameters);
    json["attributes"].push_back(std::move(entry));
  }
  return json;
}

void list(std::ostream& out, const Vane::Parameters& parameters) {
  const char* separator = "(";
  for (const Vane::Parameter& parameter : parameters.all()) {
    out << separator << parameter.name << ": " << parameter.type;
    separator = ", ";
  }
  out << (parameters.count == 0 ? "()" : ")");
}

void listType(std::ostream& out, const Vane::TypeDescriptor& type, std::size_t index) {
  out << "\n  " << index << "  " << type.name << (type.isEnumeration() ? "  enumeration" : "  entity");
  if (type.constructor.count > 0) {
    out << "  ";
    list(out, type.constructor);
  }
  out << "\n";
  for (std::size_t value = 0; value < type.values.size(); ++value) {
    out << "       " << value << "  " << type.values[value] << "\n";
  }
  U32 number = type.firstNumber;
  for (const Vane::AttributeDescriptor& attribute : type.attributes) {
    out << "     " << number++ << "  " << attribute.name;
    if (takesArguments(attribute)) list(out, attribute.parameters);
    out << ": " << attribute.type << "  ";
    for (const std::string& name : namesOf(attribute.flags)) out << " " << name;
    out << "\n";
  }
}

}  // namespace

std::string registryListing() {
  std::ostringstream out;
  const char* separator = "";
  for (const Vane::ModuleDescriptor* module : Vane::modules()) {
    out << separator << "Module " << module->unit << "\n  symbol  " << module->symbol << "\n";
    for (const std::string_view used : module->uses) out << "  uses    " << used << "\n";
    std::size_t index = 0;
    for (const Vane::TypeDescriptor& type : module->types) listType(out, type, index++);
    separator = "\n";
  }
  return out.str();
}

std::string registryJson() {
  Json modules = Json::array();
  for (const Vane::ModuleDescriptor* module : Vane::modules()) {
    Json entry{
        {"unit", module->unit}, {"symbol", module->symbol}, {"uses", module->uses}, {"types", Json::array()}};
    std::size_t index = 0;
    for (const Vane::TypeDescriptor& type : module->types) entry["types"].push_back(typeJson(type, index++));
    modules.push_back(std::move(entry));
  }
  return Json{{"modules", std::move(modules)}}.dump(2) + "\n";
}

}  // namespace loamshow
