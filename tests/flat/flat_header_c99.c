/* The C header must compile on its own as strict C99, its record layouts checked by the
 * static assertions it carries. Built as part of the test suite, never run. */
#include <rysdk/rysdk_c.h>

RY_C_STATIC_ASSERT(sizeof(RESULT) == 4 && sizeof(PIXEL_FORMAT) == 4, fixed_width_enumerations);
RY_C_STATIC_ASSERT(PIXEL_FORMAT_YUV41112PACKED == 0x80120005u, maker_specific_formats);

int ry_flat_header_c99_compiles(void) {
    RYCAMERA_INFO info = {0};
    return (int)sizeof(info) + (int)RESULT_SUCCESS;
}
