<?php
/*
 * Lomarin for MySQL - HTTP tunnel script.
 *
 * Relays the MySQL client/server byte stream between Lomarin and a MySQL server that this web
 * server can reach, for networks where only HTTP(S) gets through.
 *
 * Installing:
 *   1. Set $secret below to a long random text, and type the same text as "Secret" on the PHP
 *      tunnel page of the account in Lomarin. Until $secret is set, every request is refused.
 *   2. Optionally list the MySQL servers the script may reach in $allowed_hosts.
 *   3. Put this file on a Unix-like web server with PHP 7.4 or later (no extension needed) that
 *      runs several requests at a time (each open connection keeps one request running),
 *      preferably under HTTPS, and enter its address as "PHP url" in the account. The
 *      "Save tunnel script..." button of that page saves a copy with the secret already set.
 *
 * Protocol (version 1). Every request carries the secret in the header "X-Tunnel-Secret"; a
 * request without the right secret gets 403 and an empty body, and nothing else happens.
 *   GET  ?a=open&host=H&port=P    Connects to the MySQL server H:P. On failure: 400 (host not
 *                                 allowed) or 502, with a one-line reason. Otherwise 200 and a body
 *                                 of frames that lasts as long as the MySQL connection. A frame is
 *                                 a type byte, a 4-byte big-endian length and that many bytes:
 *                                   "I" the connection's id (32 hex digits), always first;
 *                                   "D" bytes the MySQL server sent;
 *                                   "K" nothing: keeps proxies from closing an idle stream;
 *                                   "E" the end, with a reason when it is not the server's close.
 *   POST ?a=send&id=ID            The body is written to the MySQL server, in the order of the
 *                                 requests; the answer (204) comes once the bytes are queued.
 *   POST ?a=close&id=ID           Closes the MySQL connection; the open request then ends.
 *   send and close answer 410 when the connection is gone.
 * The open request keeps running as the connection's relay; send and close reach it through a
 * Unix socket in a folder that only the web server's user can enter.
 */

// The shared secret; empty refuses every request.
$secret = '';
// MySQL servers the script may connect to, as 'host' or 'host:port'; empty allows any.
$allowed_hosts = array();
// Where the relays' sockets live; empty: a folder of this script's own in the temporary folder.
$relay_folder = '';

const KEEPALIVE_SECONDS = 15;
const CONNECT_SECONDS = 10;
const UPSTREAM_LIMIT = 4194304;

function answer($status, $text = '')
{
    http_response_code($status);
    header('Content-Type: text/plain');
    header('Cache-Control: no-store');
    echo $text === '' ? '' : $text . "\n";
    exit;
}

function relay_folder($configured)
{
    $folder = $configured !== '' ? $configured
        : rtrim(sys_get_temp_dir(), '/\\') . '/lomarin-tunnel-' . substr(md5(__FILE__), 0, 12);
    if (!is_dir($folder)) {
        $old = umask(077);
        @mkdir($folder, 0700);
        umask($old);
    }
    clearstatcache();
    // A folder that others can enter, or that is not ours to write, would expose the relays.
    if (!is_dir($folder) || is_link($folder) || (fileperms($folder) & 0077) !== 0 || !is_writable($folder)) {
        answer(500, 'the relay folder ' . $folder . ' is not private to the web server user');
    }
    return $folder;
}

function socket_path($folder, $id)
{
    if (!is_string($id) || !preg_match('/^[0-9a-f]{32}$/', $id)) {
        answer(410, 'no such connection');
    }
    return $folder . '/' . $id . '.sock';
}

function host_allowed($allowed, $host, $port)
{
    if (count($allowed) === 0) {
        return true;
    }
    foreach ($allowed as $entry) {
        if (strcasecmp($entry, $host) === 0 || strcasecmp($entry, $host . ':' . $port) === 0) {
            return true;
        }
    }
    return false;
}

function frame($type, $bytes = '')
{
    echo $type . pack('N', strlen($bytes)) . $bytes;
    flush();
}

// Runs for as long as the MySQL connection lives: server bytes go out as frames, bytes of the
// send requests (arriving on the listener) go to the server.
function relay($mysql, $listener, $path)
{
    $upstream = '';
    $clients = array();   // socket id => array(stream, bytes read so far)
    $unanswered = array(); // finished send requests waiting for room in $upstream
    $reason = '';
    $closing = false;
    while (!$closing) {
        $read = array($mysql, $listener);
        foreach ($clients as $client) {
            $read[] = $client[0];
        }
        $write = strlen($upstream) > 0 ? array($mysql) : array();
        $except = null;
        $ready = @stream_select($read, $write, $except, KEEPALIVE_SECONDS);
        if ($ready === false) {
            $reason = 'the relay could not wait for its sockets';
            break;
        }
        if ($ready === 0) {
            frame('K');
            if (connection_aborted()) {
                break;
            }
            continue;
        }
        foreach ($read as $stream) {
            if ($stream === $mysql) {
                $bytes = fread($mysql, 262144);
                if ($bytes === false || ($bytes === '' && feof($mysql))) {
                    $closing = true;
                    break;
                }
                if ($bytes !== '') {
                    frame('D', $bytes);
                    if (connection_aborted()) {
                        $closing = true;
                        break;
                    }
                }
            } elseif ($stream === $listener) {
                $client = @stream_socket_accept($listener, 0);
                if ($client !== false) {
                    stream_set_blocking($client, false);
                    $clients[(int) $client] = array($client, '');
                }
            } else {
                $key = (int) $stream;
                $bytes = fread($stream, 1048576);
                if ($bytes !== false && $bytes !== '') {
                    $clients[$key][1] .= $bytes;
                    continue;
                }
                if (!feof($stream) && $bytes !== false) {
                    continue;
                }
                $request = $clients[$key][1];
                unset($clients[$key]);
                if ($request === 'C') {
                    fwrite($stream, 'k');
                    fclose($stream);
                    $closing = true;
                    break;
                }
                if (strlen($request) > 0 && $request[0] === 'D') {
                    $upstream .= substr($request, 1);
                }
                $unanswered[] = $stream;
            }
        }
        if (count($write) > 0 && !$closing) {
            $written = @fwrite($mysql, $upstream);
            if ($written === false) {
                $reason = 'the MySQL server stopped reading';
                break;
            }
            $upstream = (string) substr($upstream, $written);
        }
        // The sender waits for its answer while the server is slow to read: the queue stays small.
        if (strlen($upstream) < UPSTREAM_LIMIT) {
            foreach ($unanswered as $stream) {
                @fwrite($stream, 'k');
                fclose($stream);
            }
            $unanswered = array();
        }
    }
    fclose($mysql);
    fclose($listener);
    @unlink($path);
    foreach ($clients as $client) {
        fclose($client[0]);
    }
    foreach ($unanswered as $stream) {
        fclose($stream);
    }
    frame('E', $reason);
}

function open_connection($folder, $allowed)
{
    $host = isset($_GET['host']) ? (string) $_GET['host'] : '';
    $port = isset($_GET['port']) ? (int) $_GET['port'] : 3306;
    if ($host === '' || $port <= 0 || $port > 65535) {
        answer(400, 'the request names no MySQL host and port');
    }
    if (!host_allowed($allowed, $host, $port)) {
        answer(400, 'the MySQL host ' . $host . ':' . $port . ' is not allowed by the tunnel script');
    }
    $target = (strpos($host, ':') !== false ? '[' . $host . ']' : $host) . ':' . $port;
    $mysql = @stream_socket_client('tcp://' . $target, $errno, $error, CONNECT_SECONDS);
    if ($mysql === false) {
        answer(502, 'the tunnel script cannot connect to the MySQL server at ' . $host . ':' . $port . ': ' . $error);
    }
    $id = bin2hex(random_bytes(16));
    $path = $folder . '/' . $id . '.sock';
    $listener = @stream_socket_server('unix://' . $path, $errno, $error);
    if ($listener === false) {
        fclose($mysql);
        answer(500, 'the tunnel script cannot listen on ' . $path . ': ' . $error);
    }
    stream_set_blocking($mysql, false);
    stream_set_read_buffer($mysql, 0);
    stream_set_write_buffer($mysql, 0);

    set_time_limit(0);
    ignore_user_abort(true);
    while (ob_get_level() > 0) {
        ob_end_clean();
    }
    header('Content-Type: application/octet-stream');
    header('Cache-Control: no-store');
    // Asks front-end servers (nginx and the like) not to hold the stream back.
    header('X-Accel-Buffering: no');
    frame('I', $id);
    relay($mysql, $listener, $path);
}

// Hands one request's bytes to the relay of connection id and waits until it took them.
function pass_to_relay($folder, $id, $message)
{
    $relay = @stream_socket_client('unix://' . socket_path($folder, $id), $errno, $error, CONNECT_SECONDS);
    if ($relay === false) {
        answer(410, 'no such connection');
    }
    for ($done = 0; $done < strlen($message);) {
        $written = fwrite($relay, substr($message, $done, 1048576));
        if ($written === false || $written === 0) {
            answer(410, 'the connection ended');
        }
        $done += $written;
    }
    stream_socket_shutdown($relay, STREAM_SHUT_WR);
    stream_set_timeout($relay, 3600);
    $ack = fread($relay, 1);
    fclose($relay);
    if ($ack !== 'k') {
        answer(410, 'the connection ended');
    }
    http_response_code(204);
}

$given = isset($_SERVER['HTTP_X_TUNNEL_SECRET']) ? (string) $_SERVER['HTTP_X_TUNNEL_SECRET'] : '';
if ($secret === '' || !hash_equals($secret, $given)) {
    header_remove('X-Powered-By');
    http_response_code(403);
    exit;
}

$action = isset($_GET['a']) ? (string) $_GET['a'] : '';
$folder = relay_folder($relay_folder);
$id = isset($_GET['id']) ? $_GET['id'] : '';
switch ($action) {
    case 'open':
        open_connection($folder, $allowed_hosts);
        break;
    case 'send':
        pass_to_relay($folder, $id, 'D' . file_get_contents('php://input'));
        break;
    case 'close':
        pass_to_relay($folder, $id, 'C');
        break;
    default:
        answer(400, 'unknown action');
}
