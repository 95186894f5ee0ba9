#ifndef PLATFORM_CONFIG_CONFIGURATION_H
#define PLATFORM_CONFIG_CONFIGURATION_H

#include <cstddef>
#include <string>

#include "platform/export.h"

// The agent's configuration manager. The object belongs to the configuration library and lives
// until the process ends. Any thread; the calls do not block once the settings have been read,
// which happens at the first call.
class PLATFORM_API IConfiguration {
 public:
  virtual ~IConfiguration() = default;

  // The one configuration of this process; never null.
  static IConfiguration* GetConfiguration();

  // The agent's data directory, as a full path without a trailing separator.
  virtual std::wstring GetFrameworkDataDirectory() const = 0;

  // 1 when the agent is under central management, else 0.
  virtual int IsManaged() const = 0;

  // How many bytes the records of one list may take in memory; at least 1.
  virtual std::size_t GetMaxRecordBytes() const = 0;
};

#endif
