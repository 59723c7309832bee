// Enumerations shared by every node interface. The numeric values are the ones GenApi
// clients compare against, so they must never be renumbered.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace RyGenApi {

enum EAccessMode {
    NI = 0,
    NA = 1,
    WO = 2,
    RO = 3,
    RW = 4,
    _UndefinedAccesMode = 5,
    _CycleDetectAccesMode = 6
};

enum EVisibility { Beginner = 0, Expert = 1, Guru = 2, Invisible = 3, _UndefinedVisibility = 99 };

enum ECachingMode { NoCache = 0, WriteThrough = 1, WriteAround = 2, _UndefinedCachingMode = 3 };

enum ERepresentation {
    Linear = 0,
    Logarithmic = 1,
    Boolean = 2,
    PureNumber = 3,
    HexNumber = 4,
    IPV4Address = 5,
    MACAddress = 6,
    _UndefinedRepresentation = 7
};

enum ENameSpace { Custom = 0, Standard = 1, _UndefinedNameSpace = 2 };

enum EIncMode { noIncrement = 0, fixedIncrement = 1, listIncrement = 2 };

enum EDisplayNotation {
    fnAutomatic = 0,
    fnFixed = 1,
    fnScientific = 2,
    _UndefinedEDisplayNotation = 3
};

enum EInterfaceType {
    intfIValue = 0,
    intfIBase = 1,
    intfIInteger = 2,
    intfIBoolean = 3,
    intfICommand = 4,
    intfIFloat = 5,
    intfIString = 6,
    intfIRegister = 7,
    intfICategory = 8,
    intfIEnumeration = 9,
    intfIEnumEntry = 10,
    intfIPort = 11
};

inline bool IsReadable(EAccessMode mode) {
    return mode == RO || mode == RW;
}
inline bool IsWritable(EAccessMode mode) {
    return mode == WO || mode == RW;
}
inline bool IsImplemented(EAccessMode mode) {
    return mode != NI;
}
inline bool IsAvailable(EAccessMode mode) {
    return mode != NI && mode != NA;
}

// Combines two access modes; the more restrictive one wins and a write-only side meeting
// a read-only side leaves nothing usable.
EAccessMode Combine(EAccessMode first, EAccessMode second);
EVisibility Combine(EVisibility first, EVisibility second);

const char* AccessModeName(EAccessMode mode);
const char* InterfaceTypeName(EInterfaceType type);

class INode;
class IValue;
using NodeList_t = std::vector<INode*>;
using FeatureList_t = std::vector<IValue*>;
using StringList_t = std::vector<std::string>;

}  // namespace RyGenApi
