// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::smtp, mail messages and what is needed to send them. The library composes and reads them; the
// application's transport talks to the server.

#include <ruvo/smtp/address.hpp>
#include <ruvo/smtp/email.hpp>
#include <ruvo/smtp/mailbox.hpp>
#include <ruvo/smtp/response.hpp>
#include <ruvo/smtp/wire.hpp>
