#include "loamshow/commands/RegistryReport.h"

#include <sstream>
#include <utility>
#include <vector>

#include "loamshow/json/JsonWriter.h"
#include "platform/Vane.h"

namespace loamshow {

namespace {

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

void write(JsonWriter& out, const Vane::Parameters& parameters) {
  out.beginArray();
  for (const Vane::Parameter& parameter : parameters.all()) {
    out.beginObject();
    out.member("name", parameter.name);
    out.member("type", parameter.type);
    out.endObject();
  }
  out.endArray();
}

void writeAttribute(JsonWriter& out, const Vane::AttributeDescriptor& attribute, U32 number) {
  out.beginObject();
  out.member("number", number);
  out.member("name", attribute.name);
  out.member("type", attribute.type);
  out.key("flags");
  out.beginArray();
  for (const std::string& flag : namesOf(attribute.flags)) out.value(flag);
  out.endArray();
  if (takesArguments(attribute)) {
    out.key("parameters");
    write(out, attribute.parameters);
  }
  out.endObject();
}

void writeType(JsonWriter& out, const Vane::TypeDescriptor& type, std::size_t index) {
  out.beginObject();
  out.member("name", type.name);
  out.member("index", index);
  out.member("kind", type.isEnumeration() ? "enumeration" : "entity");
  if (type.isEnumeration()) {
    out.key("values");
    out.beginArray();
    for (std::size_t value = 0; value < type.values.size(); ++value) {
      out.beginObject();
      out.member("value", value);
      out.member("name", type.values[value]);
      out.endObject();
    }
  } else {
    if (type.constructor.count > 0) {
      out.key("constructor");
      write(out, type.constructor);
    }
    out.key("attributes");
    out.beginArray();
    U32 number = type.firstNumber;
    for (const Vane::AttributeDescriptor& attribute : type.attributes) {
      writeAttribute(out, attribute, number++);
    }
  }
  out.endArray();
  out.endObject();
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
  std::string text;
  JsonWriter out(text, JsonWriter::Layout::indented);
  out.beginObject();
  out.key("modules");
  out.beginArray();
  for (const Vane::ModuleDescriptor* module : Vane::modules()) {
    out.beginObject();
    out.member("unit", module->unit);
    out.member("symbol", module->symbol);
    out.key("uses");
    out.beginArray();
    for (const std::string_view used : module->uses) out.value(used);
    out.endArray();
    out.key("types");
    out.beginArray();
    std::size_t index = 0;
    for (const Vane::TypeDescriptor& type : module->types) writeType(out, type, index++);
    out.endArray();
    out.endObject();
  }
  out.endArray();
  out.endObject();
  return text;
}

}  // namespace loamshow
