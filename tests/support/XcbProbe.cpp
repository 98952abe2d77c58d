// SPDX-License-Identifier: MIT
#include "tests/support/XcbProbe.h"

#include <xcb/res.h>

#include <cstdlib>

namespace XcbProbe {

xcb_atom_t atom(xcb_connection_t* connection, const char* name) {
    xcb_intern_atom_reply_t* reply =
        xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 0, uint16_t(qstrlen(name)), name), nullptr);
    const xcb_atom_t value = reply != nullptr ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    std::free(reply);
    return value;
}

xcb_window_t rootWindowProperty(xcb_connection_t* connection, const char* property) {
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    xcb_get_property_reply_t* reply = xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, root, atom(connection, property), XCB_ATOM_WINDOW, 0, 1), nullptr);
    xcb_window_t window = 0;
    if (reply != nullptr && xcb_get_property_value_length(reply) == 4) {
        window = *static_cast<const xcb_window_t*>(xcb_get_property_value(reply));
    }
    std::free(reply);
    return window;
}

bool exists(xcb_connection_t* connection, xcb_window_t window) {
    xcb_get_window_attributes_reply_t* reply =
        xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, window), nullptr);
    const bool found = reply != nullptr;
    std::free(reply);
    return found;
}

qint64 clientPid(xcb_connection_t* connection, xcb_window_t window) {
    xcb_res_client_id_spec_t spec{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    xcb_res_query_client_ids_reply_t* reply =
        xcb_res_query_client_ids_reply(connection, xcb_res_query_client_ids(connection, 1, &spec), nullptr);
    qint64 pid = 0;
    if (reply != nullptr) {
        for (auto it = xcb_res_query_client_ids_ids_iterator(reply); it.rem > 0; xcb_res_client_id_value_next(&it)) {
            if ((it.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0 && it.data->length == 4) {
                pid = *xcb_res_client_id_value_value(it.data);
            }
        }
    }
    std::free(reply);
    return pid;
}

xcb_window_t windowManagerCheck(xcb_connection_t* connection) {
    const xcb_window_t check = rootWindowProperty(connection, "_NET_SUPPORTING_WM_CHECK");
    if (check == 0 || !exists(connection, check)) {
        return 0;
    }
    // The check window names itself once the window manager has finished setting it up.
    xcb_get_property_reply_t* reply = xcb_get_property_reply(
        connection,
        xcb_get_property(connection, 0, check, atom(connection, "_NET_SUPPORTING_WM_CHECK"), XCB_ATOM_WINDOW, 0, 1),
        nullptr);
    const bool named = reply != nullptr && xcb_get_property_value_length(reply) == 4 &&
                       *static_cast<const xcb_window_t*>(xcb_get_property_value(reply)) == check;
    std::free(reply);
    return named ? check : 0;
}

void setTitleBytes(xcb_connection_t* connection, xcb_window_t window, const QByteArray& bytes) {
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, atom(connection, "_NET_WM_NAME"),
                        atom(connection, "UTF8_STRING"), 8, uint32_t(bytes.size()), bytes.constData());
    // A round trip: the change has reached the server once a reply to a later request has come.
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

}  // namespace XcbProbe
