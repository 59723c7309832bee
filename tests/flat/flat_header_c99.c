/* The C header must compile on its own as strict C99, its record layouts checked by the
 * static assertions it carries. Built as part of the test suite, never run. */
#include <rysdk/rysdk_c.h>

RY_C_STATIC_ASSERT(sizeof(RESULT) == 4 && sizeof(PIXEL_FORMAT) == 4, fixed_width_enumerations);
/* The maker-specific codes are macros in C; the C++ build checks the others against the list. */
RY_C_STATIC_ASSERT(PIXEL_FORMAT_YUV42210PACKED == 0x80180001u, yuv422_10);
RY_C_STATIC_ASSERT(PIXEL_FORMAT_YUV42212PACKED == 0x80180002u, yuv422_12);
RY_C_STATIC_ASSERT(PIXEL_FORMAT_YUV41110PACKED == 0x80120004u, yuv411_10);
RY_C_STATIC_ASSERT(PIXEL_FORMAT_YUV41112PACKED == 0x80120005u, yuv411_12);

int ry_flat_header_c99_compiles(void) {
    RYCAMERA_INFO info = {0};
    return (int)sizeof(info) + (int)RESULT_SUCCESS;
}
