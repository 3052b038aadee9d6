#include "OS/Host/Midi/AlsaClient.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <fstream>

namespace OSInternal {

namespace {

// Which clients of the sequencer are this library's: also those of devices that outlive a
// connection.
std::array<std::atomic<bool>, 256> ownClients;

void keepQuiet(const char*, int, const char*, int, const char*, ...) {}

// libasound speaks on standard error where there is no sequencer.
class QuietAlsa
{
public:
    QuietAlsa() : before_(snd_lib_error) { snd_lib_error_set_handler(keepQuiet); }
    QuietAlsa(const QuietAlsa&) = delete;
    QuietAlsa& operator=(const QuietAlsa&) = delete;
    ~QuietAlsa() { snd_lib_error_set_handler(before_); }

private:
    snd_lib_error_handler_t before_;
};

std::string nameOf(const char* client, const char* port)
{
    const std::string clientName = client;
    const std::string portName = port;
    if (portName.empty() || portName == clientName)
        return clientName;
    // Most ports of hardware repeat the name of their card.
    return portName.rfind(clientName, 0) == 0 ? portName : clientName + ": " + portName;
}

} // namespace

AlsaClient::AlsaClient(snd_seq_t* handle) : handle_(handle)
{
    ownClients[static_cast<unsigned char>(snd_seq_client_id(handle_))] = true;
}

AlsaClient::~AlsaClient()
{
    ownClients[static_cast<unsigned char>(snd_seq_client_id(handle_))] = false;
    snd_seq_close(handle_);
}

std::unique_ptr<AlsaClient> AlsaClient::open(const char* name, int& status)
{
    static std::mutex opening; // the handler of errors is the process's
    const std::lock_guard<std::mutex> lock(opening);
    const QuietAlsa quiet;
    snd_seq_t* handle = nullptr;
    status = snd_seq_open(&handle, "default", SND_SEQ_OPEN_DUPLEX, SND_SEQ_NONBLOCK);
    if (status < 0)
        return nullptr;
    std::unique_ptr<AlsaClient> client(new AlsaClient(handle));
    snd_seq_set_client_name(handle, name);
    return client;
}

std::vector<MidiEndpoint> AlsaClient::endpoints(unsigned int capabilities)
{
    std::vector<MidiEndpoint> result;
    snd_seq_client_info_t* client;
    snd_seq_port_info_t* port;
    snd_seq_client_info_alloca(&client);
    snd_seq_port_info_alloca(&port);
    snd_seq_client_info_set_client(client, -1);
    while (snd_seq_query_next_client(handle_, client) >= 0) {
        const int id = snd_seq_client_info_get_client(client);
        if (id == SND_SEQ_CLIENT_SYSTEM || ownClients[static_cast<unsigned char>(id)])
            continue;
        snd_seq_port_info_set_client(port, id);
        snd_seq_port_info_set_port(port, -1);
        while (snd_seq_query_next_port(handle_, port) >= 0) {
            const unsigned int has = snd_seq_port_info_get_capability(port);
            if ((has & capabilities) != capabilities || (has & SND_SEQ_PORT_CAP_NO_EXPORT))
                continue;
            const int card = snd_seq_client_info_get_card(client);
            result.push_back(
                {std::to_string(id) + ":" + std::to_string(snd_seq_port_info_get_port(port)),
                 nameOf(snd_seq_client_info_get_name(client), snd_seq_port_info_get_name(port)),
                 card >= 0 ? alsaCardManufacturer(card, "") : "",
                 !(snd_seq_port_info_get_type(port) & SND_SEQ_PORT_TYPE_HARDWARE)});
        }
    }
    return result;
}

bool parseAlsaAddress(const std::string& text, snd_seq_addr_t& address)
{
    return std::sscanf(text.c_str(), "%hhu:%hhu", &address.client, &address.port) == 2;
}

std::string alsaCardManufacturer(int card, const std::string& hostRoot)
{
    // The card's device is an interface of the one on the bus, which has the text.
    std::ifstream file(hostRoot + "/sys/class/sound/card" + std::to_string(card) +
                       "/device/../manufacturer");
    std::string text;
    std::getline(file, text);
    while (!text.empty() && static_cast<unsigned char>(text.back()) <= ' ')
        text.pop_back();
    return text;
}

} // namespace OSInternal
