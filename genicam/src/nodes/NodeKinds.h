// Every node kind, for the code that creates nodes by kind (the loader, the node map).
#pragma once

#include "nodes/BooleanNode.h"
#include "nodes/CategoryNode.h"
#include "nodes/CommandNode.h"
#include "nodes/EnumerationNodes.h"
#include "nodes/LegacyNodes.h"
#include "nodes/PortNode.h"
#include "nodes/StringNode.h"
