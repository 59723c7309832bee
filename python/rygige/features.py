"""A camera's features by name, with Python's types, and the property list as a tree."""

from __future__ import annotations

import ctypes
from collections.abc import Mapping
from dataclasses import dataclass, field
from typing import Any, Callable, Iterator, Union

from rygige import _types as t
from rygige._flat import FlatLibrary
from rygige.errors import Result, RyGigEError

FeatureValue = Union[int, float, bool, str]
Number = Union[int, float]

_FIRST_ANSWER = 256  # most answers fit; a longer one is read again at its size


@dataclass(frozen=True)
class Feature:
    """One record of the camera's property list."""

    name: str
    kind: t.FeatureKind
    access: t.Access
    visibility: t.Visibility
    display_name: str
    description: str

    @property
    def readable(self) -> bool:
        """True when the value can be read now."""
        return self.access in (t.Access.RO, t.Access.RW)

    @property
    def writable(self) -> bool:
        """True when the value can be written now."""
        return self.access in (t.Access.WO, t.Access.RW)


@dataclass
class Category:
    """A category of the property list and what it holds."""

    feature: Feature
    children: list[Union["Category", Feature]] = field(default_factory=list)

    @property
    def name(self) -> str:
        """The category's node name."""
        return self.feature.name

    def walk(self) -> Iterator[tuple[int, Union["Category", Feature]]]:
        """Every entry below this category, depth first, with its depth (1 for children)."""
        for child in self.children:
            yield 1, child
            if isinstance(child, Category):
                for depth, entry in child.walk():
                    yield depth + 1, entry


def _text(raw: bytes) -> str:
    return raw.decode("utf-8", errors="replace")


def _feature(record: t.PropertyInfo) -> Feature:
    def known(kind: Any, value: int, fallback: Any) -> Any:
        try:
            return kind(value)
        except ValueError:
            return fallback

    return Feature(
        name=_text(record.name),
        kind=known(t.FeatureKind, record.type, t.FeatureKind.VALUE),
        access=known(t.Access, record.accessMode, t.Access.NA),
        visibility=known(t.Visibility, record.visibility, t.Visibility.GURU),
        display_name=_text(record.displayName),
        description=_text(record.description),
    )


def _encoded(name: object, what: str = "feature name") -> bytes:
    if not isinstance(name, str):
        raise TypeError(f"a {what} is a str, not {type(name).__name__}")
    if not name or "\0" in name:
        raise ValueError(f"invalid {what} {name!r}")
    return name.encode("utf-8")


class Features(Mapping[str, FeatureValue]):
    """The camera's features: `features["Width"]` reads, `features["Width"] = 640` writes.

    Values have the feature's type: int, float, bool, str (strings and the symbolic name of
    an enumeration entry). Unknown names raise RyGigENotFoundError (a KeyError), values of
    the wrong type TypeError, unknown enumeration entries ValueError, read-only features
    RyGigEAccessDeniedError. Iteration gives the names of the property list's features.
    Thread: application."""

    def __init__(self, library: FlatLibrary, handle: Callable[[], int]) -> None:
        """`handle` gives the open camera's flat handle (or raises once it is closed)."""
        self._flat = library
        self._camera_handle = handle
        self._kinds: dict[str, t.FeatureKind] = {}

    def info(self, name: str) -> Feature:
        """The feature's record, read from the camera now."""
        record = t.PropertyInfo()
        self._flat.CameraGetPropertyInfo(self._camera_handle(), _encoded(name), ctypes.byref(record))
        return _feature(record)

    def properties(self) -> list[Feature]:
        """The property list: every visible feature and category, depth first."""
        count = ctypes.c_int32()
        self._flat.CameraGetPropertyCount(self._camera_handle(), ctypes.byref(count))
        records = []
        for index in range(count.value):
            record = t.PropertyInfo()
            self._flat.CameraGetPropertyInfoUsingIndex(self._camera_handle(), index, ctypes.byref(record))
            records.append(_feature(record))
        return records

    def tree(self) -> Category:
        """The property list as categories holding features. The list gives each category
        before its features but not how categories nest, so every category after the first
        (the root) is a child of the root."""
        records = self.properties()
        if not records or records[0].kind != t.FeatureKind.CATEGORY:
            root = Category(Feature("Root", t.FeatureKind.CATEGORY, t.Access.RO,
                                    t.Visibility.BEGINNER, "Root", ""))
        else:
            root, records = Category(records[0]), records[1:]
        current = root
        for record in records:
            if record.kind == t.FeatureKind.CATEGORY:
                current = Category(record)
                root.children.append(current)
            else:
                current.children.append(record)
        return root

    def kind(self, name: str) -> t.FeatureKind:
        """The feature's interface type (cached: it never changes)."""
        known = self._kinds.get(name)
        if known is None:
            known = self.info(name).kind
            self._kinds[name] = known
        return known

    def _query(self, name: str, what: int) -> str:
        size = ctypes.c_uint64(_FIRST_ANSWER)
        for _ in range(2):
            buffer = ctypes.create_string_buffer(size.value)
            capacity = size.value
            result = self._flat.unchecked("CameraGetCustomCommand")(
                self._camera_handle(), _encoded(name), buffer, ctypes.byref(size), what
            )
            if result == Result.SUCCESS:
                return _text(buffer.value)
            if result == Result.ERROR_INVALID_PARAMETER and size.value == 1:
                return ""  # the SDK never writes an empty answer
            if result != Result.ERROR_INVALID_PARAMETER or size.value <= capacity:
                break
        self._flat.raise_for(result, f"reading {name!r}")
        raise RyGigEError(f"reading {name!r} failed")  # not reached: result was a failure

    def __getitem__(self, name: str) -> FeatureValue:
        kind = self.kind(name)
        if kind == t.FeatureKind.COMMAND:
            raise TypeError(f"{name} is a command: run it with features.execute({name!r})")
        text = self._query(name, t.CustomQuery.VALUE)
        if kind == t.FeatureKind.INTEGER:
            return int(text)
        if kind == t.FeatureKind.FLOAT:
            return float(text)
        if kind == t.FeatureKind.BOOLEAN:
            return text.strip() == "1"
        return text

    def __setitem__(self, name: str, value: FeatureValue) -> None:
        text = self._as_text(name, self.kind(name), value)
        self._flat.CameraSetCustomCommand(self._camera_handle(), _encoded(name), text, len(text), 0, 0)

    def _as_text(self, name: str, kind: t.FeatureKind, value: object) -> bytes:
        def wrong(expected: str) -> TypeError:
            return TypeError(f"{name} takes {expected}, not {type(value).__name__}")

        if kind == t.FeatureKind.INTEGER:
            if isinstance(value, bool) or not isinstance(value, int):
                raise wrong("an int")
            return str(value).encode()
        if kind == t.FeatureKind.FLOAT:
            if isinstance(value, bool) or not isinstance(value, (int, float)):
                raise wrong("a float")
            return repr(float(value)).encode()
        if kind == t.FeatureKind.BOOLEAN:
            if not isinstance(value, bool):
                raise wrong("a bool")
            return b"1" if value else b"0"
        if kind == t.FeatureKind.ENUMERATION:
            if not isinstance(value, str):
                raise wrong("the name of one of its entries (a str)")
            entries = self.entries(name)
            if value not in entries:
                raise ValueError(f"{name} has no entry {value!r}; its entries: {entries}")
            return _encoded(value, "entry")
        if kind in (t.FeatureKind.STRING, t.FeatureKind.REGISTER):
            if not isinstance(value, str) or "\0" in value:
                raise wrong("a str without NUL characters")
            return value.encode("utf-8")
        if kind == t.FeatureKind.COMMAND:
            raise TypeError(f"{name} is a command: run it with features.execute({name!r})")
        raise TypeError(f"{name} is a {kind.name.lower()} and has no value")

    def entries(self, name: str) -> list[str]:
        """The symbolic names of an enumeration's available entries."""
        count = int(self._query(name, t.CustomQuery.NUM))
        return [self._query(name, t.CustomQuery.INDEX + index) for index in range(count)]

    def range(self, name: str) -> tuple[Number, Number, Number]:
        """(minimum, maximum, increment) of an integer or float feature."""
        parse: Callable[[str], Number] = int if self.kind(name) == t.FeatureKind.INTEGER else float
        return (
            parse(self._query(name, t.CustomQuery.MIN)),
            parse(self._query(name, t.CustomQuery.MAX)),
            parse(self._query(name, t.CustomQuery.INC)),
        )

    def execute(self, name: str) -> None:
        """Runs a command feature."""
        if self.kind(name) != t.FeatureKind.COMMAND:
            raise TypeError(f"{name} is not a command")
        self._flat.CameraSetCustomCommand(self._camera_handle(), _encoded(name), b"1", 1, 0, 0)

    def __contains__(self, name: object) -> bool:
        if not isinstance(name, str) or not name or "\0" in name:
            return False
        record = t.PropertyInfo()
        result = self._flat.unchecked("CameraGetPropertyInfo")(
            self._camera_handle(), _encoded(name), ctypes.byref(record)
        )
        return result == Result.SUCCESS

    def __iter__(self) -> Iterator[str]:
        return (
            record.name
            for record in self.properties()
            if record.kind != t.FeatureKind.CATEGORY
        )

    def __len__(self) -> int:
        return sum(1 for _ in self)
