#ifndef PLATFORM_CONFIG_CONFIGURATION_H
#define PLATFORM_CONFIG_CONFIGURATION_H

#include <cstddef>
#include <string>

#include "platform/export.h"

// The agent's configuration manager. The object belongs to the configuration library and exists
// until the process ends. Any thread. The first call reads the settings and may block; later calls
// do not block.
class PLATFORM_API IConfiguration {
 public:
  virtual ~IConfiguration() = default;

  // Returns the configuration of this process; never null.
  static IConfiguration* GetConfiguration();

  // Returns the full path of the agent's data directory, without a trailing separator.
  virtual std::wstring GetFrameworkDataDirectory() const = 0;

  // Returns 1 when the agent is under central management, else 0.
  virtual int IsManaged() const = 0;

  // Returns how many bytes of memory the records of one list may take; at least 1.
  virtual std::size_t GetMaxRecordBytes() const = 0;
};

#endif
