#pragma once

#include "include/cef_base.h"
#include "include/cef_values.h"

//@function
bool CefResolveURL(const CefString& base_url, const CefString& relative_url, CefString& resolved_url);
//@function
bool CefParseURL(const CefString& url, CefURLParts& parts);
//@function
bool CefCreateURL(const CefURLParts& parts, CefString& url);
//@function
CefString CefGetMimeType(const CefString& extension);
//@function
CefString CefBase64Encode(const void* data, size_t data_size);
//@function
CefRefPtr<CefBinaryValue> CefBase64Decode(const CefString& data);
//@function
CefString CefURIEncode(const CefString& text, bool use_plus);
//@function
CefString CefURIDecode(const CefString& text, bool convert_to_utf8, cef_uri_unescape_rule_t unescape_rule);
//@function
CefRefPtr<CefValue> CefParseJSON(const CefString& json_string, cef_json_parser_options_t options);
//@function
CefString CefWriteJSON(CefRefPtr<CefValue> node, cef_json_writer_options_t options);
