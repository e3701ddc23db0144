#pragma once

#include "include/cef_base.h"

class CefDOMDocument;
class CefDOMNode;

/// Sees the document in the page's own process, on its main thread.
//@client
class CefDOMVisitor : public virtual CefBaseRefCounted {
public:
    virtual void Visit(CefRefPtr<CefDOMDocument> document) = 0;
};

//@engine
class CefDOMDocument : public virtual CefBaseRefCounted {
public:
    typedef cef_dom_document_type_t Type;

    virtual Type GetType() = 0;
    virtual CefRefPtr<CefDOMNode> GetDocument() = 0;
    virtual CefRefPtr<CefDOMNode> GetBody() = 0;
    virtual CefRefPtr<CefDOMNode> GetHead() = 0;
    virtual CefString GetTitle() = 0;
    virtual CefRefPtr<CefDOMNode> GetElementById(const CefString& id) = 0;
    virtual CefRefPtr<CefDOMNode> GetFocusedNode() = 0;
    virtual bool HasSelection() = 0;
    virtual int GetSelectionStartOffset() = 0;
    virtual int GetSelectionEndOffset() = 0;
    virtual CefString GetSelectionAsMarkup() = 0;
    virtual CefString GetSelectionAsText() = 0;
    virtual CefString GetBaseURL() = 0;
    virtual CefString GetCompleteURL(const CefString& partialURL) = 0;
};

//@engine
class CefDOMNode : public virtual CefBaseRefCounted {
public:
    typedef std::map<CefString, CefString> AttributeMap;
    typedef cef_dom_form_control_type_t FormControlType;
    typedef cef_dom_node_type_t Type;

    virtual Type GetType() = 0;
    virtual bool IsText() = 0;
    virtual bool IsElement() = 0;
    virtual bool IsEditable() = 0;
    virtual bool IsFormControlElement() = 0;
    virtual FormControlType GetFormControlElementType() = 0;
    virtual bool IsSame(CefRefPtr<CefDOMNode> that) = 0;
    virtual CefString GetName() = 0;
    virtual CefString GetValue() = 0;
    virtual bool SetValue(const CefString& value) = 0;
    virtual CefString GetAsMarkup() = 0;
    virtual CefRefPtr<CefDOMDocument> GetDocument() = 0;
    virtual CefRefPtr<CefDOMNode> GetParent() = 0;
    virtual CefRefPtr<CefDOMNode> GetPreviousSibling() = 0;
    virtual CefRefPtr<CefDOMNode> GetNextSibling() = 0;
    virtual bool HasChildren() = 0;
    virtual CefRefPtr<CefDOMNode> GetFirstChild() = 0;
    virtual CefRefPtr<CefDOMNode> GetLastChild() = 0;
    virtual CefString GetElementTagName() = 0;
    virtual bool HasElementAttributes() = 0;
    virtual bool HasElementAttribute(const CefString& attrName) = 0;
    virtual CefString GetElementAttribute(const CefString& attrName) = 0;
    virtual void GetElementAttributes(AttributeMap& attrMap) = 0;
    virtual bool SetElementAttribute(const CefString& attrName, const CefString& value) = 0;
    virtual CefString GetElementInnerText() = 0;
    /// CSS pixels.
    virtual CefRect GetElementBounds() = 0;
};
