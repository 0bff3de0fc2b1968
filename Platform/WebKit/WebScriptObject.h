// A script object that a page handed to native code. The same script object is the same WebScriptObject while that
// lives. Reads and calls run on the web thread; references may be held and dropped on any thread. After its page has
// gone it is dead: reads give nil, calls do nothing.
//
// **Reading a key can run arbitrary script** (getters, proxies), which may call back into the plug-in, remove its
// element or navigate away. Callers hold no lock and keep what they use alive.
#pragma once

#include "Platform/Foundation/SelfSharingObject.h"
#include "Platform/WebKit/ScriptContext.h"

#include <optional>
#include <utility>

namespace veyra {

class WebScriptObject final : public SelfSharingObject {
public:
    VEYRA_CLASS()
    ~WebScriptObject() override;

    /// The converted value of the property; undefined goes to `valueForUndefinedKey:`. An exception of a getter is
    /// written to the page's console and counts as undefined.
    id valueForKey(const NSString& key) override;
    /// The converted element; an absent one is WebUndefined.
    id webScriptValueAtIndex(unsigned index);
    /// Calls the method of that name with this object as `this`; when there is nothing callable nothing happens. An
    /// exception is written to the page's console. The result is nil when there is none.
    id callWebScriptMethod(const NSString& name, const NSArray& arguments);

    /// Raises a script exception with the message: an Error that is thrown when the current call from a script returns
    /// (the last message wins; the call's result is lost). Outside a call from a script the message is logged.
    static void throwException(const NSString& message);

    /// The script object, or null when its page has gone. Web thread.
    JSObjectRef scriptObject() const;
    const std::shared_ptr<ScriptContext>& context() const { return _context; }

    bool isEqual(const NSObject& other) const override;
    size_t hash() const override;

private:
    friend class ScriptContext;
    friend class AnsweringAhead;
    friend class ScriptElementWalk;
    /// `object` is null for one that answers only what has been read ahead.
    WebScriptObject(std::shared_ptr<ScriptContext> context, JSObjectRef object)
        : _context(std::move(context)), _object(object) {}
    void report(JSValueRef exception) const;

    const std::shared_ptr<ScriptContext> _context;
    JSObjectRef const _object;
    std::optional<unsigned> _slot;           // none while only the running call's arguments keep the object; web thread
    ScriptValuesAhead* _readAhead = nullptr; // that answers reads just now; web thread
};

/// Lets a script object (may be null) answer from what has been read of it, as long as this lives.
class AnsweringAhead {
public:
    AnsweringAhead(std::shared_ptr<WebScriptObject> object, ScriptValuesAhead& ahead)
        : _object(std::move(object)), _former(_object ? std::exchange(_object->_readAhead, &ahead) : nullptr) {}
    ~AnsweringAhead() {
        if (_object)
            _object->_readAhead = _former;
    }
    AnsweringAhead(const AnsweringAhead&) = delete;
    AnsweringAhead& operator=(const AnsweringAhead&) = delete;

private:
    const std::shared_ptr<WebScriptObject> _object;
    ScriptValuesAhead* const _former;
};

} // namespace veyra
