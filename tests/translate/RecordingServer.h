// The recording server as the tests steer it. recording_server.py says what each order means.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "foundation/transport/Endpoint.h"

namespace quillmarch::addin::recording_server {

// Reached as "localhost", since certificates name that. The test fails when the program was not
// started beside a server.
Endpoint Http();
Endpoint Https();
Endpoint HttpsOfAStranger();
Endpoint HttpsOfAnotherName();
// The certificate of the authority behind Https() and HttpsOfAnotherName(), a PEM file.
std::string AuthorityFile();

void Clear();
void Next(const std::string& action);
void Always(const std::string& action);
void Release();
void WaitForRequests(int count);
int RequestCount();
int ConnectionCount();
// The bytes of one request, counted from 0.
std::string Request(int index);

// Action words with their payloads.
std::string Answer(int status, std::string_view body, std::string_view headers = {});
std::string Hex(std::string_view bytes);

}  // namespace quillmarch::addin::recording_server
