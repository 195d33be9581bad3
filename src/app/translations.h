#pragma once

/// Has the application, which exists, speak the language of its user where translations of its own
/// texts and of the toolkit's are found; elsewhere the texts stay English.
void loadTranslations();
