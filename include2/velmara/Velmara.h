#pragma once

/// All public headers at once.

#include <velmara/ActionNames.h>
#include <velmara/Buffer.h>
#include <velmara/ClassifierNames.h>
#include <velmara/CodecBase64.h>
#include <velmara/CodecBinHex40.h>
#include <velmara/CodecQuotedPrintable.h>
#include <velmara/CodecUUEncode.h>
#include <velmara/ContentDisposition.h>
#include <velmara/ContentEncoding.h>
#include <velmara/ContentType.h>
#include <velmara/Exception.h>
#include <velmara/Export.h>
#include <velmara/FontSize.h>
#include <velmara/Header.h>
#include <velmara/HeaderContainer.h>
#include <velmara/HostName.h>
#include <velmara/IPAddress.h>
#include <velmara/Logger.h>
#include <velmara/Md5Hasher.h>
#include <velmara/MediaIn.h>
#include <velmara/MediaOut.h>
#include <velmara/MimeVersion.h>
#include <velmara/Mutex.h>
#include <velmara/RefHeaderList.h>
#include <velmara/Regex.h>
#include <velmara/RgbColour.h>
#include <velmara/Singleton.h>
#include <velmara/SmtpClient.h>
#include <velmara/SmtpResponse.h>
#include <velmara/StringOperations.h>
#include <velmara/StringPattern.h>
#include <velmara/TypeAndValue.h>
#include <velmara/TypedHeader.h>
#include <velmara/VmaraRefcounted.h>
