// The one mark of what com.zvk.stats.pdlibvark.so.0 exports. The library is built with hidden
// visibility; only declarations carrying PDLIBVARK_API are seen by the host.
#ifndef PDLIBVARK_EXPORT_H
#define PDLIBVARK_EXPORT_H

#define PDLIBVARK_API __attribute__((visibility("default")))

#endif // PDLIBVARK_EXPORT_H
