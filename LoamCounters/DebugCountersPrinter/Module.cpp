// The registration of this unit: its types, with the numbers, names, kinds, value types and parameters of
// their attributes.

#include <iostream>
#include <string_view>

#include "LoamCounters/DebugCountersPrinter/DebugCountersPrinter.h"
#include "LoamCounters/DebugCountersPrinter/DescriptorMappings.h"
#include "platform/Vane.h"

namespace LoamCounters {

namespace {

using Vane::AttributeDescriptor;

constexpr AttributeDescriptor fapDescriptorMapping[] = {
    Vane::collection<&FapDescriptorMapping::fapDescriptors, &FapDescriptorMapping::fapDescriptorIs,
                     &FapDescriptorMapping::fapDescriptorDel>("fapDescriptor"),
};

constexpr AttributeDescriptor shmemMgrMapping[] = {
    Vane::collection<&ShmemMgrMapping::shmemMgrs, &ShmemMgrMapping::shmemMgrIs,
                     &ShmemMgrMapping::shmemMgrDel>("shmemMgr"),
};

constexpr AttributeDescriptor debugCountersPrinter[] = {
    Vane::operation<&DebugCountersPrinter::printDebugCounter>(
        "printDebugCounter", "fd", "fmt", "descriptor", "snapshot", "shmemMgr", "drops", "printSectionName",
        "blockName", "instance", "extraDescription"),
    Vane::operation<&DebugCountersPrinter::printFapName>("printFapName", "fd", "fmt", "fapName"),
    Vane::operation<&DebugCountersPrinter::printDebugCountersHeader>("printDebugCountersHeader", "fd", "fmt"),
    Vane::operation<&DebugCountersPrinter::printDebugCountersPerAFap>(
        "printDebugCountersPerAFap", "shmemMgrs", "fapDescriptors", "fd", "fmt", "snapshot", "drops",
        "blockName"),
};

constexpr U32 firstNumber = 130;

constexpr Vane::TypeDescriptor types[] = {
    Vane::entity<&FapDescriptorMapping::FapDescriptorMappingIs>(firstNumber, fapDescriptorMapping),
    Vane::entity<&ShmemMgrMapping::ShmemMgrMappingIs>(firstNumber, shmemMgrMapping),
    Vane::entity<&DebugCountersPrinter::DebugCountersPrinterIs>(firstNumber, debugCountersPrinter),
};

constexpr std::string_view uses[] = {"Brim/Counters/ShmemManager", "LoamCounters/FapDescriptor"};

}  // namespace

// The symbol of this unit in the exporting library.
// NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" constexpr Vane::ModuleDescriptor _DebugCountersPrinter_7b5872ac678f736f_vaneModule{
    "LoamCounters/DebugCountersPrinter", "_DebugCountersPrinter_7b5872ac678f736f_vaneModule", uses, types};

namespace {

constexpr const Vane::ModuleDescriptor& module = _DebugCountersPrinter_7b5872ac678f736f_vaneModule;

const std::ios_base::Init standardStreams;
const Vane::Registration registration(module);

}  // namespace

const Vane::TypeData& FapDescriptorMapping::fwkType() {
  return Vane::registered<FapDescriptorMapping, module>();
}

const Vane::TypeData& ShmemMgrMapping::fwkType() {
  return Vane::registered<ShmemMgrMapping, module>();
}

const Vane::TypeData& DebugCountersPrinter::fwkType() {
  return Vane::registered<DebugCountersPrinter, module>();
}

}  // namespace LoamCounters
