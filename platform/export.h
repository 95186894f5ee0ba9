#ifndef PLATFORM_EXPORT_H
#define PLATFORM_EXPORT_H

// Marks what the agent's platform libraries export. These libraries and libsitehlp are built with
// hidden visibility. A declaration without this mark cannot be linked against.
#define PLATFORM_API __attribute__((visibility("default")))

#endif
