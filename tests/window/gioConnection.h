// SPDX-License-Identifier: MIT
#pragma once

namespace sonarin {

/// Keeps GIO's shared connection to the session bus, as a plug-in of the toolkit may.
class GioConnection {
public:
    GioConnection();
    GioConnection(const GioConnection&) = delete;
    GioConnection& operator=(const GioConnection&) = delete;
    ~GioConnection();

    [[nodiscard]] bool endsTheProgramWithTheBus() const;
    [[nodiscard]] bool hasClosed() const;

private:
    void* connection_;
};

} // namespace sonarin
