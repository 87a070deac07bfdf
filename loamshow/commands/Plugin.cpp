#include "loamshow/commands/Plugin.h"

#include <dlfcn.h>

#include "loamshow/text/InputError.h"

namespace loamshow {

void loadPlugin(const std::string& path) {
  if (::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL) == nullptr) {
    std::string_view reason = ::dlerror();  // NOLINT(concurrency-mt-unsafe): glibc keeps one per thread
    if (reason.starts_with(path + ": ")) reason.remove_prefix(path.size() + 2);
    throw InputError("cannot load the plug-in: " + printable(path) + ": " + printable(reason));
  }
  if (Vane::modules().empty()) throw InputError(path + ": registers no types");
}

Object::Object(std::string_view type, std::span<const Vane::Value> arguments) : type_(Vane::findType(type)) {
  if (type_ == nullptr || type_->isEnumeration()) {
    throw InputError("the plug-in registers no entity " + std::string(type));
  }
  node_ = type_->instance(arguments);
}

Vane::Value Object::call(std::string_view operation, std::span<const Vane::Value> arguments) const {
  return request(operation, Vane::OpCode::call, arguments, {});
}

void Object::enqueue(std::string_view queue, const Vane::Value& item) const {
  request(queue, Vane::OpCode::enqueue, {}, item);
}

void Object::insert(std::string_view collection, const Vane::Value& key, const Vane::Value& item) const {
  request(collection, Vane::OpCode::write, {&key, 1}, item);
}

Vane::Value Object::request(std::string_view attribute, Vane::OpCode op,
                            std::span<const Vane::Value> arguments, const Vane::Value& value) const {
  const auto number = type_->numberOf(attribute);
  Vane::Value result;
  if (!number || Vane::genericIfAttributeOp(*node_, result, *number, static_cast<U8>(op), arguments, value) !=
                     Vane::OpStatus::done) {
    throw InputError("the plug-in's " + std::string(type_->name) + " has no attribute " +
                     std::string(attribute));
  }
  return result;
}

}  // namespace loamshow
