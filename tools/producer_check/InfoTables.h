/// The information commands of every module, with what they answer.
#ifndef ZYN_PRODUCER_CHECK_INFO_TABLES_H
#define ZYN_PRODUCER_CHECK_INFO_TABLES_H

#include <string>
#include <vector>

#include "Bench.h"

namespace zyn::producercheck {

/// One information command.
struct Command {
  std::int32_t id;
  const char* name;
  GenTL::INFO_DATATYPE type;
  bool
      isMandatory;  ///< from version `since` on; "not available" is an answer then only where mayLack says so
  int since = 0;    ///< minor version of GenTL 1.x
  bool mayLack = false;  ///< mandatory, but its value may be unknown
};

/// A function that answers information commands, bound to a module.
struct InfoFunction {
  std::string name;
  std::function<GenTL::GC_ERROR(std::int32_t, GenTL::INFO_DATATYPE*, void*, std::size_t*)> ask;
  const std::vector<Command>* commands;

  Ask Bound(std::int32_t command) const {
    return [ask = ask, command](GenTL::INFO_DATATYPE* type, void* buffer, std::size_t* size) {
      return ask(command, type, buffer, size);
    };
  }
};

const std::vector<Command>& SystemCommands();
const std::vector<Command>& InterfaceCommands();
const std::vector<Command>& DeviceCommands();
const std::vector<Command>& StreamCommands();
const std::vector<Command>& BufferCommands();
const std::vector<Command>& PortCommands();
const std::vector<Command>& UrlCommands();
const std::vector<Command>& EventCommands();

/// "INT32" and so on.
std::string NameOfType(GenTL::INFO_DATATYPE type);

/// Fails unless every command answers as its table says.
void ExpectCommands(Bench& bench, const InfoFunction& function);

}  // namespace zyn::producercheck

#endif
