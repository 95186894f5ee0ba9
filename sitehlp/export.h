#ifndef SITEHLP_EXPORT_H
#define SITEHLP_EXPORT_H

// Marks what libsitehlp exports; everything else is hidden.
#define SITEHLP_API __attribute__((visibility("default")))

#endif
