#pragma once

#include "include/cef_base.h"

//@engine
class CefMenuModel : public virtual CefBaseRefCounted {
public:
    typedef cef_menu_item_type_t MenuItemType;

    virtual bool IsSubMenu() = 0;
    virtual bool Clear() = 0;
    virtual size_t GetCount() = 0;
    virtual bool AddSeparator() = 0;
    virtual bool AddItem(int command_id, const CefString& label) = 0;
    virtual bool AddCheckItem(int command_id, const CefString& label) = 0;
    virtual bool AddRadioItem(int command_id, const CefString& label, int group_id) = 0;
    virtual CefRefPtr<CefMenuModel> AddSubMenu(int command_id, const CefString& label) = 0;
    virtual bool InsertSeparatorAt(size_t index) = 0;
    virtual bool InsertItemAt(size_t index, int command_id, const CefString& label) = 0;
    virtual bool Remove(int command_id) = 0;
    virtual bool RemoveAt(size_t index) = 0;
    virtual int GetIndexOf(int command_id) = 0;
    virtual int GetCommandIdAt(size_t index) = 0;
    virtual CefString GetLabel(int command_id) = 0;
    virtual CefString GetLabelAt(size_t index) = 0;
    virtual bool SetLabel(int command_id, const CefString& label) = 0;
    virtual MenuItemType GetType(int command_id) = 0;
    virtual MenuItemType GetTypeAt(size_t index) = 0;
    virtual CefRefPtr<CefMenuModel> GetSubMenu(int command_id) = 0;
    virtual bool IsVisible(int command_id) = 0;
    virtual bool SetVisible(int command_id, bool visible) = 0;
    virtual bool IsEnabled(int command_id) = 0;
    virtual bool SetEnabled(int command_id, bool enabled) = 0;
};
