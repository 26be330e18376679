<?php
// A till in PHP: php till.php ORDER, with the service's address in MIRVANE_SERVICE
$service = getenv('MIRVANE_SERVICE') ?: 'http://127.0.0.1:8200';
$token = getenv('MIRVANE_TOKEN');

function put(string $url, array $content, string|false $token): array
{
    $headers = ['Prefer: wait=30', 'Content-Type: application/json'];
    if ($token) $headers[] = "Authorization: Bearer $token";
    $options = ['method' => 'PUT', 'header' => $headers, 'content' => json_encode($content), 'timeout' => 60,
        'ignore_errors' => true];
    $body = @file_get_contents($url, false, stream_context_create(['http' => $options]));
    $status = $body === false ? 0 : (int) explode(' ', $http_response_header[0])[1];
    if ($status === 0 || $status === 429 || $status >= 500) return ['state' => 'no answer'];
    return json_decode($body, true);
}

// The order's number is the id: however often this is asked, the receipt is printed once.
$receipt = [
    'lines' => [
        ['description' => 'Ελληνικός καφές', 'price' => 2.50, 'vat' => 24],
        ['description' => 'Κουλούρι', 'price' => 0.80, 'quantity' => 2, 'vat' => 13],
    ],
    'payments' => [['type' => 'cash']],
];
do {
    $answer = put("$service/v1/receipts/$argv[1]", $receipt, $token);
    $isUnderWay = in_array($answer['state'] ?? '', ['queued', 'printing', 'waiting', 'no answer'], true);
    if ($isUnderWay) sleep(1);
} while ($isUnderWay);
if (($answer['state'] ?? '') !== 'committed') {
    fwrite(STDERR, json_encode($answer, JSON_UNESCAPED_UNICODE) . "\n");
    exit(1);
}
echo "receipt {$answer['booked']['number']}, total {$answer['booked']['total']}\n";
