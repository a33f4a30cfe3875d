#ifndef LIB_VERSION_H
#define LIB_VERSION_H

#define LIBALGO_VERSION "1.5.3-f0364d3b"

#endif
