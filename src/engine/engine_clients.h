#pragma once

namespace ZEMO::UI {

/// What the engine needs of a browser client when the process exits. Implemented by the upper floor.
class IEngineClient {
public:
    /// Takes no frame any more and gives its browser up, without a word to the game, which may be half gone. Engine
    /// thread.
    virtual void leaveEngine() = 0;

protected:
    ~IEngineClient() = default;
};

/// The clients that exist, and the browsers that the engine has made for them. Process-wide; never destroyed, since
/// views that a game leaks outlive every static object.
class EngineClients {
public:
    // Any thread.
    static void add(IEngineClient* client);
    static void remove(IEngineClient* client);

    // Engine thread.
    static void leaveAll();
    static void browserCreated();
    static void browserClosed();
    /// Browsers that the engine has made and not closed yet.
    static int liveBrowsers();
};

}  // namespace ZEMO::UI
