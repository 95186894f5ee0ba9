#ifndef PLATFORM_EXPORT_H
#define PLATFORM_EXPORT_H

// Marks what the agent's platform libraries export. Both sides of the seam are built with hidden
// visibility, so a declaration without this mark cannot be linked against.
#define PLATFORM_API __attribute__((visibility("default")))

#endif
