# Its headers are those of the machine's package; tools/text/fmt_library.cpp has its code.
