"""Opening cameras, features by name, the serial channel and files, and bad input."""

from __future__ import annotations

import subprocess
import sys
from typing import Any, Union

import pytest

import rygige
from conftest import ADDRESS, TREE, WIDTH, Emulator


def test_discovery_records_and_open_by_each_selector(system: rygige.System) -> None:
    [found] = system.cameras()
    assert found.ip_address == ADDRESS and found.model and found.index == 0
    [interface] = system.interfaces()
    assert interface.cameras == (found,)
    selectors: list[Union[int, str, rygige.CameraInfo]] = [
        0, found.name, ADDRESS, found.mac_address.upper(), found
    ]
    for selector in selectors:
        with system.open(selector) as camera:
            assert camera.features["Width"] == WIDTH
        assert camera.closed


def test_what_cannot_be_opened(system: rygige.System) -> None:
    with pytest.raises(rygige.RyGigENotFoundError):
        system.open("no-such-camera")
    with pytest.raises(rygige.RyGigENotFoundError):
        system.open(5)
    with pytest.raises(TypeError):
        system.open(1.5)  # type: ignore[arg-type]
    with pytest.raises(ValueError):
        system.open(0, buffers=0)
    with pytest.raises(rygige.RyGigEError) as second:
        rygige.System()
    assert second.value.result == rygige.Result.ERROR_OPENED_ALREADY


def test_exclusive_privilege_keeps_another_process_out(system: rygige.System) -> None:
    with system.open(0, privilege=rygige.Privilege.EXCLUSIVE):
        other = subprocess.run(
            [sys.executable, "-m", "rygige", "info", "0", "--timeout", "300"],
            cwd=TREE / "python",
            capture_output=True,
            text=True,
            timeout=60,
        )
    assert other.returncode == 1, other.stdout + other.stderr


def test_features_read_and_write_with_python_types(camera: rygige.Camera) -> None:
    features = camera.features
    assert isinstance(features["Width"], int)
    features["Width"] = 160
    assert features["Width"] == 160
    low, high, step = features.range("Width")
    assert low <= 160 <= high and step >= 1
    features["Gain"] = 2  # an int is a fine float
    assert features["Gain"] == pytest.approx(2.0)
    assert features["PixelFormat"] == "Mono8"
    assert "BayerRG8" in features.entries("PixelFormat")
    features["PixelFormat"] = "BayerRG8"
    assert features["PixelFormat"] == "BayerRG8"
    assert isinstance(features["StreamHold"], bool)
    features["StreamHold"] = True
    assert features["StreamHold"] is True
    assert isinstance(features["DeviceModelName"], str)


def test_the_property_list_and_its_tree(camera: rygige.Camera) -> None:
    features = camera.features
    names = list(features)
    assert "Width" in names and "ImageFormatControl" not in names
    assert len(features) == len(names)
    root = features.tree()
    assert root.name == "Root"
    image = next(c for c in root.children if c.name == "ImageFormatControl")
    assert isinstance(image, rygige.Category)
    assert "Width" in [entry.name for entry in image.children]
    assert all(depth <= 2 for depth, _ in root.walk())
    info = features.info("Width")
    assert info.kind == rygige.FeatureKind.INTEGER and info.writable


def test_bad_feature_input_gives_clear_errors(camera: rygige.Camera) -> None:
    features = camera.features
    with pytest.raises(rygige.RyGigENotFoundError) as unknown:
        features["NoSuchFeature"]
    assert unknown.value.result == rygige.Result.ERROR_XML_NOT_EXIST_NODE
    with pytest.raises(KeyError):
        features["NoSuchFeature"] = 1
    assert "NoSuchFeature" not in features and "" not in features
    assert 3 not in features  # type: ignore[comparison-overlap]
    assert features.get("NoSuchFeature") is None
    wrong: list[tuple[str, Any]] = [("Width", "640"), ("Width", 1.5), ("Width", True), ("Gain", "x"),
                        ("StreamHold", 1), ("PixelFormat", 3), ("DeviceUserID", b"x")]
    for name, value in wrong:
        with pytest.raises(TypeError):
            features[name] = value
    with pytest.raises(ValueError):
        features["PixelFormat"] = "NoSuchFormat"
    with pytest.raises((TypeError, ValueError)):
        features["Wid\0th"]
    with pytest.raises(TypeError):
        features[42]  # type: ignore[index]
    with pytest.raises(rygige.RyGigEAccessDeniedError):
        features["SensorWidth"] = 100
    with pytest.raises(TypeError):
        features["AcquisitionStart"]
    with pytest.raises(TypeError):
        features.execute("Width")


def test_a_closed_camera_refuses_every_call(system: rygige.System) -> None:
    camera = system.open(0)
    camera.close()
    camera.close()  # again: nothing happens
    with pytest.raises(rygige.CameraClosedError):
        camera.features["Width"]
    with pytest.raises(rygige.CameraClosedError):
        camera.grab(1)
    with pytest.raises(rygige.CameraClosedError):
        camera.statistics()
    system.close()
    with pytest.raises(rygige.CameraClosedError):
        system.cameras()


def test_serial_channel_and_files(camera: rygige.Camera, emulator: Emulator) -> None:
    assert "OK" in camera.serial("set 4321")
    assert "4321" in camera.serial("get")
    assert "ERR" in camera.serial("nonsense")
    files = camera.features.entries("FileSelector")
    assert "UserData" in files
    payload = bytes(range(256)) * 2
    camera.write_file("UserData", payload)
    assert camera.read_file("UserData")[: len(payload)] == payload
    with pytest.raises(TypeError):
        camera.write_file("UserData", "text")  # type: ignore[arg-type]
    with pytest.raises(ValueError):
        camera.read_file("NoSuchFile")
