#pragma once

namespace ZEMO::Test {

/// Puts a made-up management service before the real one, for this process: COM asks the registered class objects
/// first. It stands in for what can't be provoked in the real one: a failure at a chosen step, a chosen list of
/// objects. It obeys the environment variables MADE_UP_WMI_FAIL (connect, blanket or query) and MADE_UP_WMI_VALUES (one
/// object for each part between semicolons, whose every property is that text; "<null>" has no value, "<number>" no
/// text, "<missing>" refuses the property, "<fail>" fails the enumeration) and prints the calls. MADE_UP_WMI_FIRST: the
/// first connection stands until the event of that name is set, all later ones fail.
void registerMadeUpWmi();

/// Objects of it that are alive.
long madeUpWmiLiveObjects();

}  // namespace ZEMO::Test
