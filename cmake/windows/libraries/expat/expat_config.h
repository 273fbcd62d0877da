/* What Expat's own build finds out about the system. */
#define BYTEORDER 1234
#define XML_CONTEXT_BYTES 1024
#define XML_DTD 1
#define XML_NS 1
