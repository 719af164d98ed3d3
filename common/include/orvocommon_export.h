// Marks what liborvocommonutils exports; everything else stays hidden.
#ifndef ORVOCOMMON_EXPORT_H
#define ORVOCOMMON_EXPORT_H

#define ORVO_COMMON_API __attribute__((visibility("default")))

#endif // ORVOCOMMON_EXPORT_H
