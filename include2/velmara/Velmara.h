#pragma once

/// All public headers at once.

#include <velmara/Buffer.h>
#include <velmara/Exception.h>
#include <velmara/Export.h>
#include <velmara/Logger.h>
#include <velmara/Md5Hasher.h>
#include <velmara/MediaIn.h>
#include <velmara/MediaOut.h>
#include <velmara/Mutex.h>
#include <velmara/Regex.h>
#include <velmara/Singleton.h>
#include <velmara/StringOperations.h>
#include <velmara/StringPattern.h>
#include <velmara/TypeAndValue.h>
#include <velmara/VmaraRefcounted.h>
