// The operations that this library offers and their signatures.
#ifndef ZTB_PROVIDERS_RXF_OPERATION_TABLE_H_
#define ZTB_PROVIDERS_RXF_OPERATION_TABLE_H_

namespace rxffile {

inline constexpr int kApiVersion = 9;

// True when `operation` is offered with exactly this signature: `codes` are the codes of the result
// and of `argCount` arguments behind the object handle. Otherwise false with the reason in `msg`,
// which, unless null, has room for 160 bytes.
bool offersOperation(const char* operation, int argCount, const int* codes, char* msg);

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_OPERATION_TABLE_H_
