// Pictures for menu items, taken from a tool-bar resource: every command of the tool bar gets
// its button image, cut from the bitmap of the same id, with the transparent colour made
// see-through. Each image is a 32-bit premultiplied-alpha DIB section.
//
// A menu given such a bitmap as the item's own (MIIM_BITMAP) copies it without its alpha on
// some systems: black squares, and a highlighted item inverts it. So the items get
// HBMMENU_CALLBACK instead, and the menu's owner answers WM_MEASUREITEM and WM_DRAWITEM with
// Measure and Draw, which blend the image over whatever the menu painted and keep a gap
// between the image and the text.
//
// The menu does not own item bitmaps: MenuImages keeps them and deletes them when it goes, so
// it must outlive every menu it was applied to (or the menus must be destroyed first).
#pragma once

#include <windows.h>

#include <utility>
#include <vector>

#include "GdiObjects.h"

namespace lx {

class MenuImages {
public:
    // Reads the tool-bar resource `id` of `instance` and the bitmap strip of the same id.
    // False when either is missing or the strip is narrower than the images it should hold.
    bool Load(HINSTANCE instance, UINT id, COLORREF transparent);

    // Gives every item of `menu` and its submenus whose command has an image that image.
    // Items without one are left as they are, so the call may be repeated after the menu
    // changed (a recent-files list refilled by its frame).
    void ApplyTo(HMENU menu) const;

    // The image of `command`, or null.
    HBITMAP ImageOf(UINT command) const;

    // WM_MEASUREITEM and WM_DRAWITEM of a menu item's image; false when the item is not one
    // of these images' (the owner handles it as before).
    bool Measure(MEASUREITEMSTRUCT& item) const;
    bool Draw(const DRAWITEMSTRUCT& item) const;
    size_t Count() const { return images_.size(); }

private:
    std::vector<std::pair<UINT, Bitmap>> images_;
    SIZE size_{};
};

}  // namespace lx
