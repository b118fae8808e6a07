#pragma once

/// All public headers at once.

#include <velmara/Buffer.h>
#include <velmara/Exception.h>
#include <velmara/Export.h>
#include <velmara/Logger.h>
#include <velmara/MediaIn.h>
#include <velmara/MediaOut.h>
#include <velmara/Mutex.h>
#include <velmara/Singleton.h>
#include <velmara/StringOperations.h>
#include <velmara/TypeAndValue.h>
#include <velmara/VmaraRefcounted.h>
