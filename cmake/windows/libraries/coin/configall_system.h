/* What the COIN-OR sources ask of the compiler and the system where their own configuration did not
   run: here always GCC for 64-bit Windows. */
#ifndef ZTB_CONFIGALL_SYSTEM_H
#define ZTB_CONFIGALL_SYSTEM_H

#define HAVE_CASSERT 1
#define HAVE_CCTYPE 1
#define HAVE_CFLOAT 1
#define HAVE_CINTTYPES 1
#define HAVE_CMATH 1
#define HAVE_CSTDARG 1
#define HAVE_CSTDDEF 1
#define HAVE_CSTDINT 1
#define HAVE_CSTDIO 1
#define HAVE_CSTDLIB 1
#define HAVE_CSTRING 1
#define HAVE_CTIME 1
#define HAVE_STDINT_H 1
#define HAVE_WINDOWS_H 1
#define STDC_HEADERS 1

#define COIN_C_FINITE std::isfinite
#define COIN_C_ISNAN std::isnan

#endif
