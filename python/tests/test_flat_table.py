"""The package's declarations against the C headers: every flat function with its number of
arguments, every record's size and offsets, the result and pixel format numbers."""

from __future__ import annotations

import ctypes
import re
from pathlib import Path

from conftest import TREE
from rygige import _flat, _types, errors

HEADERS = TREE / "include" / "rysdk"


def declarations() -> dict[str, int]:
    """Exported functions of the flat headers and their argument counts."""
    found: dict[str, int] = {}
    for header in ("rysdk_c.h", "rysdk_c_camera.h", "RyConvert.h"):
        text = (HEADERS / header).read_text()
        for match in re.finditer(r"RYSDK_API\s+\w+\s+(\w+)\(([^)]*)\);", text):
            arguments = match.group(2).strip()
            found[match.group(1)] = 0 if arguments in ("", "void") else arguments.count(",") + 1
    return found


def test_every_flat_function_is_declared_with_its_arguments() -> None:
    header = declarations()
    assert len(header) > 150
    table = {name: len(arguments) for name, (arguments, _) in _flat.FUNCTIONS.items()}
    assert table == header


def test_records_have_the_layout_the_header_asserts() -> None:
    text = (HEADERS / "rysdk_c_types.h").read_text()
    sizes = re.findall(r"RY_C_STATIC_ASSERT\(sizeof\((\w+)\) == (\d+)", text)
    offsets = re.findall(r"RY_C_STATIC_ASSERT\(offsetof\((\w+), (\w+)\) == (\d+)", text)
    assert len(sizes) == len(_types.RECORDS) and offsets
    for record, size in sizes:
        assert ctypes.sizeof(_types.RECORDS[record]) == int(size), record
    for record, member, offset in offsets:
        assert getattr(_types.RECORDS[record], member).offset == int(offset), (record, member)


def test_result_numbers_match_the_list_of_codes() -> None:
    text = (HEADERS / "RyResultCodes.h").read_text()
    codes = {name: int(value) for name, value in re.findall(r"X\(RESULT_(\w+), (\d+)\)", text)}
    assert {member.name: member.value for member in errors.Result} == codes


def test_pixel_format_codes_match_the_list() -> None:
    text = (HEADERS / "RyPixelFormatCodes.h").read_text()
    codes = {name: int(value, 16) for name, value in re.findall(r"X\(PIXEL_FORMAT_(\w+), (0x\w+)\)", text)}
    for name, value in codes.items():
        assert _types.PixelFormat[name] == value, name


def test_a_failure_carries_its_number_text_and_family() -> None:
    library = _flat.flat()
    assert library.result_text(errors.Result.ERROR_INVALID_PARAMETER) == "ERROR_INVALID_PARAMETER"
    cases = {
        errors.Result.ERROR_RYCAMERA_GRAB_TIMEOUT: errors.RyGigETimeoutError,
        errors.Result.ERROR_XML_NOT_EXIST_NODE: errors.RyGigENotFoundError,
        errors.Result.ERROR_ACCESS_DENIED: errors.RyGigEAccessDeniedError,
        errors.Result.ERROR_RYCAMERA_READ_ONLY: errors.RyGigEAccessDeniedError,
        errors.Result.ERROR: errors.RyGigEError,
    }
    for result, family in cases.items():
        error = errors.error_for(result, "CameraX", library.result_text)
        assert type(error) is family
        assert error.result == result and error.text in str(error)
    # A result the SDK has no text for still becomes an error, not a crash.
    assert errors.error_for(999, "CameraX", library.result_text).result == 999


def test_a_null_handle_is_refused_with_an_exception() -> None:
    library = _flat.flat()
    count = ctypes.c_uint32()
    try:
        library.RyGetNumCameras(None, ctypes.byref(count))
    except errors.RyGigEError as error:
        assert error.result == errors.Result.ERROR_INVALID_PARAMETER
        assert "RyGetNumCameras" in str(error)
    else:
        raise AssertionError("a null handle was accepted")
    assert library.unchecked("CameraAbort")(None) == errors.Result.ERROR_INVALID_PARAMETER
