# Writes OUTPUT, a C++ source defining the bytes of INPUT as ry::emulator::<SYMBOL>.
# Run as: cmake -DINPUT=... -DOUTPUT=... -DSYMBOL=... -P embed_file.cmake
file(READ ${INPUT} hex HEX)
string(LENGTH "${hex}" hex_length)
math(EXPR size "${hex_length} / 2")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)"
       "\\1\n" bytes "${bytes}")
file(WRITE ${OUTPUT}.tmp
     "// Generated from ${INPUT}; do not edit.\n#include <cstddef>\n"
     "namespace ry::emulator {\nextern const unsigned char ${SYMBOL}[] = {\n${bytes}\n};\n"
     "extern const std::size_t ${SYMBOL}Size = ${size};\n}\n")
file(COPY_FILE ${OUTPUT}.tmp ${OUTPUT} ONLY_IF_DIFFERENT)
file(REMOVE ${OUTPUT}.tmp)
