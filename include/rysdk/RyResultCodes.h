/** \file
 * The result codes, name and number, as one list that both the C++ enumeration
 * RYSDK::RESULT and the C header's RESULT are made from, so that the two cannot differ.
 * Numbers never change; each is also the index of the result's text. */
#ifndef RYSDK_RESULT_CODES_H
#define RYSDK_RESULT_CODES_H

/* clang-format off */
/** Calls X(name, number) once for every result, in the order of their numbers. */
#define RY_RESULT_CODES(X)                                     \
    X(RESULT_SUCCESS, 0)                                       \
    X(RESULT_ERROR, 1)                                         \
    X(RESULT_ERROR_OPENED_ALREADY, 2)                          \
    X(RESULT_ERROR_INVALID_HANDLE, 3)                          \
    X(RESULT_ERROR_TL_HANDLE, 4)                               \
    X(RESULT_ERROR_TLOPEN, 5)                                  \
    X(RESULT_ERROR_IF_HANDLE, 6)                               \
    X(RESULT_ERROR_RYGIGE_INITIALIZATION, 7)                   \
    X(RESULT_ERROR_INVALID_PARAMETER, 8)                       \
    X(RESULT_ERROR_DISCOVERY, 9)                               \
    X(RESULT_ERROR_NO_CAMERAS, 10)                             \
    X(RESULT_ERROR_CAMERA_NAME_DOES_NOT_EXIST, 11)             \
    X(RESULT_ERROR_ABORTED_ALREADY, 12)                        \
    X(RESULT_ERROR_ACCESS_DENIED, 13)                          \
    X(RESULT_ERROR_RESOURCE_IN_USE, 14)                        \
    X(RESULT_ERROR_CANNOT_FIND_INTERFACE, 15)                  \
    X(RESULT_ERROR_XML_UNKNOWN_ARGUMENT, 16)                   \
    X(RESULT_ERROR_XML_NODE_ACCESS_FAILED, 17)                 \
    X(RESULT_ERROR_XML_NOT_EXIST_NODE, 18)                     \
    X(RESULT_ERROR_XML_ENTERED_NODE_DOESNT_HAVE_ANY_VALUE, 19) \
    X(RESULT_ERROR_XML_UNSUPPORTED_COMMAND, 20)                \
    X(RESULT_ERROR_INVALID_WIDTH, 21)                          \
    X(RESULT_ERROR_INVALID_ADDRESS, 22)                        \
    X(RESULT_ERROR_RYINTERFACE_NO_NIC, 23)                     \
    X(RESULT_ERROR_RYINTERFACE_GETINTERFACENAME, 24)           \
    X(RESULT_ERROR_RYINTERFACE_OPENINTERFACE, 25)              \
    X(RESULT_ERROR_RYINTERFACE_CLOSEINTERFACE, 26)             \
    X(RESULT_ERROR_RYINTERFACE_GETNUMDEVICES, 27)              \
    X(RESULT_ERROR_RYINTERFACE_CANNOT_FIND_DEVICE, 28)         \
    X(RESULT_ERROR_RYCAMERA_INTERFACE_HANDLE, 29)              \
    X(RESULT_ERROR_RYCAMERA_CAMERAINDEX_OVER, 30)              \
    X(RESULT_ERROR_RYCAMERA_GETXML, 31)                        \
    X(RESULT_ERROR_RYCAMERA_IMAGE_NOT4DIVIDE, 32)              \
    X(RESULT_ERROR_RYCAMERA_IMAGE_NOT2DIVIDE, 33)              \
    X(RESULT_ERROR_RYCAMERA_READ_ONLY, 34)                     \
    X(RESULT_ERROR_RYCAMERA_EVENTCONTROL_DOESNOT_INIT, 35)     \
    X(RESULT_ERROR_RYCAMERA_GRAB_TIMEOUT, 36)                  \
    X(RESULT_ERROR_RYCAMERA_CALLBACK_NOT_NULL, 37)             \
    X(RESULT_ERROR_DEVCREATESTREAM, 38)                        \
    X(RESULT_ERROR_STREAM_MTU, 39)                             \
    X(RESULT_ERROR_TLGETNUMINTERFACES, 40)                     \
    X(RESULT_ERROR_TLOPENINTERFACE, 41)                        \
    X(RESULT_ERROR_TLCLOSEINTERFACE, 42)                       \
    X(RESULT_ERROR_TLGETINTERFACENAME, 43)                     \
    X(RESULT_ERROR_TLGETNUMDEVICES, 44)                        \
    X(RESULT_ERROR_TLGETDEVICENAME, 45)                        \
    X(RESULT_ERROR_TLOPENDEVICE, 46)                           \
    X(RESULT_ERROR_INSUFFICIENT_RESOURCES, 47)                 \
    X(RESULT_ERROR_MEMORY_ALLOCATION, 48)                      \
    X(RESULT_ERROR_FILE_STREAM_OPEN_FAILURE, 49)               \
    X(RESULT_ERROR_FILE_STREAM_READ_FAILURE, 50)               \
    X(RESULT_ERROR_FILE_STREAM_WRITE_FAILURE, 51)              \
    X(RESULT_ERROR_FILE_STREAM_CLOSE_FAILURE, 52)              \
    X(RESULT_ERROR_FILE_STREAM_NOT_CORRECT_FILE_LENGTH, 53)    \
    X(RESULT_ERROR_EXCEPTION, 54)
/* clang-format on */

#endif /* RYSDK_RESULT_CODES_H */
