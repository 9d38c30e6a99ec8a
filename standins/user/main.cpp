// user.exe: a person at the screen, for demonstrations. Starts the host and measures one width with mouse, menus and dialogs.
//   user HOST en|zh PICTURE MAXGREY X,Y X,Y END END END END PLACE TEXT PREFIX
// Points are image pixels from the top left. Status 1 and a line on standard error tell what did not happen.
// Run by scripts/demo, and by ./test through it.
#include <cstdio>
#include <stdexcept>

#include "standins/user/Road.h"

namespace {

POINT PointOf(const wchar_t* text) {
    int x = 0, y = 0;
    if (std::swscanf(text, L"%d,%d", &x, &y) != 2) {
        throw std::runtime_error("a point is X,Y");
    }
    return {x, y};
}

width::user::Plan PlanOf(wchar_t** arguments) {
    width::user::Plan plan;
    plan.host = arguments[1];
    plan.bChinese = std::wstring(arguments[2]) == L"zh";
    plan.picture = arguments[3];
    plan.maxGrey = arguments[4];
    plan.lines = {PointOf(arguments[5]), PointOf(arguments[6])};
    plan.ends = {PointOf(arguments[7]), PointOf(arguments[8]), PointOf(arguments[9]), PointOf(arguments[10])};
    plan.place = PointOf(arguments[11]);
    plan.text = arguments[12];
    plan.prefix = arguments[13];
    return plan;
}

}  // namespace

int wmain(int nArguments, wchar_t** arguments) {
    constexpr int kArguments = 14;
    if (nArguments != kArguments) {
        std::fputs("usage: user HOST en|zh PICTURE MAXGREY X,Y X,Y END END END END PLACE TEXT PREFIX\n", stderr);
        return 2;
    }
    try {
        width::user::Walk(PlanOf(arguments));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "user: %s\n", error.what());
        return 1;
    }
    return 0;
}
